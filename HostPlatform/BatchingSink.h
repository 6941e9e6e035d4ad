#pragma once

#include <spdlog/sinks/base_sink.h>

#include <memory>
#include <mutex>
#include <string>

#include <sys/stat.h>

namespace Nerix::Platform::Host {

/// Writes log lines in batches, because a system call per line would slow a run down. Writes a batch when it
/// reaches 64 KiB, at a warning or worse, and in flush. Each batch consists of whole lines in a single write,
/// so that processes sharing a file do not interleave within lines.
///
/// Before writing a batch, the sink locks the file's directory and reopens the file if another process has
/// written to it or rotated it. So the file stays within its limit, and all processes continue in the new
/// file after a rotation. If the lock is not free within about 0.1 s, because its holder may be stopped, the
/// batch is written without it, and the file may exceed its limit.
class BatchingSink final : public spdlog::sinks::base_sink<std::mutex> {
public:
    /// Opens the file, which may grow to 16 MiB; keeps four older ones. Throws spdlog::spdlog_ex on failure.
    explicit BatchingSink(const std::string& file);

protected:
    void sink_it_(const spdlog::details::log_msg& message) override;
    void flush_() override;

private:
    void open();
    void reopenIfOthersWrote();

    const std::string m_name;
    std::unique_ptr<spdlog::sinks::sink> m_file;
    struct stat m_status {}; ///< of the file, after the last batch
    std::string m_lines;
};

} // namespace Nerix::Platform::Host
