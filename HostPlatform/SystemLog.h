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

/// The host's system log. NERIX_HOST_LOG chooses where records go:
///
///     file (default)  log/main.log and log/system.log below the durable directory, each of up to 16 MiB,
///                     with four older ones
///     syslog          the machine's own log
///     stderr          standard error
///
/// Nothing is written by a process
/// whose state is in memory, see HostState.h.
///
/// A record is one line: time, priority, tag, text; the text is escaped, see EscapedText.h. In a file, lines
/// below warning level are delayed for up to a second (see BatchingSink.h). A warning, writing a setting, and
/// process exit flush them first, so nothing is lost on abort, and whoever sees a setting also finds the
/// records logged before it. A process that is killed loses at most its last second. If one process rotates a
/// shared file, the others continue in the new one. Any thread may call.
class SystemLog {
public:
    /// isInMemory: records are dropped. Otherwise NERIX_HOST_LOG is read.
    explicit SystemLog(bool isInMemory);

    /// buffer and priority are those of PlatformInterfaces/dlog.h; any buffer but DLOG_BUFFER_MAIN counts as
    /// the system buffer. False when the record could not be written; the first such failure is reported on
    /// standard error.
    bool write(int buffer, int priority, const char* tag, const std::string& text);

    /// Writes the lines that wait.
    void flush();

    /// Stops the flushing thread, disables batching, and flushes. Called when the process exits; records may
    /// follow.
    void end();

private:
    void flushEachSecond();
    void writeThrough(); ///< disables batching from now on

    std::shared_ptr<spdlog::logger> m_main; ///< null when it could not be opened
    std::shared_ptr<spdlog::logger> m_system;

    std::thread m_flusher; ///< until the process exits
    std::mutex m_mutex;    ///< guards the next
    bool m_isEnding = false;
    std::condition_variable m_wakes;
};

} // namespace Nerix::Platform::Host
