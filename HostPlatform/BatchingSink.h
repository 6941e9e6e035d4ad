#pragma once

#include <spdlog/sinks/base_sink.h>

#include <memory>
#include <mutex>
#include <string>

namespace Nerix::Platform::Host {

/// Writes the lines of a log file many at a time: a call of the system for each would cost a run a fifth of
/// its time. A line waits until 64 KiB have come together, for a warning or worse, or for flush. Each batch
/// is whole lines in one call, so that processes that share a file do not mix theirs.
class BatchingSink final : public spdlog::sinks::base_sink<std::mutex> {
public:
    /// Files of up to 16 MiB, with four older ones. Throws spdlog::spdlog_ex when the file cannot be opened.
    explicit BatchingSink(const std::string& file);

protected:
    void sink_it_(const spdlog::details::log_msg& message) override;
    void flush_() override;

private:
    const std::unique_ptr<spdlog::sinks::sink> m_file;
    std::string m_lines;
};

} // namespace Nerix::Platform::Host
