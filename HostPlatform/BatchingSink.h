#pragma once

#include <spdlog/sinks/base_sink.h>

#include <memory>
#include <mutex>
#include <string>

#include <sys/stat.h>

namespace Nerix::Platform::Host {

/// Writes log lines in batches; one system call per line would cost a run a fifth of its time. A batch is
/// written when it reaches 64 KiB, at a warning or worse, and by flush. Each batch consists of whole lines in
/// a single write, so that processes sharing a file do not interleave within lines.
///
/// A batch is written while the file's directory is locked, after the file's size has been read again, so
/// that the file stays within its limit and all processes continue in the new file after a rotation. The lock
/// is awaited for at most about 0.1 s, because its holder may be stopped; the batch is then written without
/// it and may exceed the limit.
class BatchingSink final : public spdlog::sinks::base_sink<std::mutex> {
public:
    /// Files of up to 16 MiB, with four older ones. Throws spdlog::spdlog_ex when the file cannot be opened.
    explicit BatchingSink(const std::string& file);

protected:
    void sink_it_(const spdlog::details::log_msg& message) override;
    void flush_() override;

private:
    void open();
    void reopenIfOthersWrote();

    const std::string m_name;
    std::unique_ptr<spdlog::sinks::sink> m_file;
    struct stat m_status {}; ///< of the file after the last batch
    std::string m_lines;
};

} // namespace Nerix::Platform::Host
