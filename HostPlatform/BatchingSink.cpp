#include "HostPlatform/BatchingSink.h"

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>

#include <cstdio>

namespace Nerix::Platform::Host {

namespace {

constexpr std::size_t mostBytes = std::size_t{64} << 10U;

std::unique_ptr<spdlog::sinks::sink> openFile(const std::string& name) {
    constexpr std::size_t bytesPerFile = std::size_t{16} << 20U;
    constexpr std::size_t olderFiles = 4;
    spdlog::file_event_handlers handlers;
    // A buffer of the stream would cut a batch in the middle of a line.
    handlers.after_open = [](const spdlog::filename_t&, std::FILE* file) {
        std::setvbuf(file, nullptr, _IONBF, 0);
    };
    auto file = std::make_unique<spdlog::sinks::rotating_file_sink_st>(name, bytesPerFile, olderFiles, false,
                                                                       handlers);
    file->set_formatter(
        std::make_unique<spdlog::pattern_formatter>("%v", spdlog::pattern_time_type::local, ""));
    return file;
}

} // namespace

BatchingSink::BatchingSink(const std::string& file) : m_file(openFile(file)) {}

void BatchingSink::sink_it_(const spdlog::details::log_msg& message) {
    spdlog::memory_buf_t line;
    formatter_->format(message, line);
    m_lines.append(line.data(), line.size());
    if (m_lines.size() >= mostBytes || message.level >= spdlog::level::warn) {
        flush_();
    }
}

void BatchingSink::flush_() {
    if (m_lines.empty()) {
        return;
    }
    const std::string lines = std::move(m_lines);
    m_lines.clear(); // also when they cannot be written: later ones may
    m_file->log(spdlog::details::log_msg(spdlog::string_view_t(), spdlog::level::info, lines));
    m_file->flush();
}

} // namespace Nerix::Platform::Host
