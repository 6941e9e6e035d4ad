#pragma once

#include <memory>
#include <string>

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
/// A record is one line: time, priority, tag, text. Each line is written at once and whole, so that processes
/// that share the files do not mix theirs, and an abort loses none. When one of several processes starts a
/// new file, the others go on in the old one. The text is escaped, see EscapedText.h. Any thread may call.
class SystemLog {
public:
    static SystemLog& instance();

    /// buffer and priority are those of PlatformInterfaces/dlog.h; any buffer but DLOG_BUFFER_MAIN counts as
    /// the system buffer. False when the record could not be written; the first such failure is reported on
    /// standard error.
    bool write(int buffer, int priority, const char* tag, const std::string& text);

private:
    SystemLog();

    std::shared_ptr<spdlog::logger> m_main; ///< null when it could not be opened
    std::shared_ptr<spdlog::logger> m_system;
};

} // namespace Nerix::Platform::Host
