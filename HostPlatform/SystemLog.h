#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace spdlog {
class logger;
}

namespace Nerix::Platform::Host {

/// Writes the host's system log. NERIX_HOST_LOG selects where records go:
///
///     file (default)  log/main.log and log/system.log below the durable directory, each of up to 16 MiB,
///                     with four older ones
///     syslog          the system log of the machine
///     stderr          standard error
///
/// A record is one line: time, priority, tag and escaped text (see EscapedText.h). In a file, lines below
/// warning level are delayed for up to a second (see BatchingSink.h). A warning or worse, writing a setting,
/// and process exit flush them. So nothing is lost when an assertion fails, which logs a fatal message before
/// it aborts, and a reader of a setting also finds the records logged before it. A killed process loses at
/// most its last second. If one process rotates a shared file, the others continue in the new one.
/// Thread-safe.
class SystemLog {
public:
    /// Reads NERIX_HOST_LOG, unless all records are to be discarded.
    explicit SystemLog(bool discardsRecords);

    /// Writes a record. For buffer and priority see PlatformInterfaces/dlog.h; any buffer but
    /// DLOG_BUFFER_MAIN counts as the system buffer. Returns false if writing fails during the call. A
    /// delayed line can fail later. The first failure is reported on standard error.
    bool write(int buffer, int priority, const char* tag, const std::string& text);

    /// Writes the delayed lines.
    void flush();

    /// Stops the flushing thread, disables batching and flushes. Called on process exit; records may follow.
    void end();

private:
    void flushEachSecond();
    void writeThrough(); ///< disables batching from now on

    std::shared_ptr<spdlog::logger> m_main; ///< null if it could not be opened
    std::shared_ptr<spdlog::logger> m_system;

    std::thread m_flusher; ///< runs until end()
    std::mutex m_mutex;    ///< guards m_isEnding
    bool m_isEnding = false;
    std::condition_variable m_wakeUp;
};

} // namespace Nerix::Platform::Host
