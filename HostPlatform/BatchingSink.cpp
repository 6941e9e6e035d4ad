#include "HostPlatform/BatchingSink.h"

#include "Common/Base/Descriptor.h"

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>

namespace Nerix::Platform::Host {

namespace {

constexpr std::size_t maxBytes = std::size_t{64} << 10U;

std::unique_ptr<spdlog::sinks::sink> openFile(const std::string& name) {
    constexpr std::size_t bytesPerFile = std::size_t{16} << 20U;
    constexpr std::size_t olderFiles = 4;
    spdlog::file_event_handlers handlers;
    // Unbuffered, because stdio's buffer could split a batch in the middle of a line.
    handlers.after_open = [](const spdlog::filename_t&, std::FILE* file) {
        std::setvbuf(file, nullptr, _IONBF, 0);
    };
    auto file = std::make_unique<spdlog::sinks::rotating_file_sink_st>(name, bytesPerFile, olderFiles, false,
                                                                       handlers);
    file->set_formatter(
        std::make_unique<spdlog::pattern_formatter>("%v", spdlog::pattern_time_type::local, ""));
    return file;
}

/// Locks the directory of a file. Gives up after about 0.1 s if another process holds the lock.
class DirectoryLock {
public:
    explicit DirectoryLock(const std::string& file)
        : m_directory(
              ::open(std::filesystem::path(file).parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        const std::timespec pause{0, 1'000'000};
        for (int attempts = 100; attempts != 0 && !tryToLock(); --attempts) {
            ::nanosleep(&pause, nullptr);
        }
    }

private:
    /// Returns false only if another process holds the lock; after any other failure, waiting is useless.
    bool tryToLock() const {
        return ::flock(m_directory.number(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    }

    const Common::Descriptor m_directory; ///< closing it releases the lock
};

} // namespace

BatchingSink::BatchingSink(const std::string& file) : m_name(file) {
    open();
}

void BatchingSink::open() {
    m_file = openFile(m_name);
    ::stat(m_name.c_str(), &m_status);
}

void BatchingSink::reopenIfOthersWrote() {
    struct stat status {};
    if (::stat(m_name.c_str(), &status) != 0 || status.st_ino != m_status.st_ino ||
        status.st_size != m_status.st_size) {
        try {
            open();
        } catch (const spdlog::spdlog_ex&) { // NOLINT(bugprone-empty-catch): the old file stays open
        }
    }
}

void BatchingSink::sink_it_(const spdlog::details::log_msg& message) {
    spdlog::memory_buf_t line;
    formatter_->format(message, line);
    m_lines.append(line.data(), line.size());
    if (m_lines.size() >= maxBytes || message.level >= spdlog::level::warn) {
        flush_();
    }
}

void BatchingSink::flush_() {
    if (m_lines.empty()) {
        return;
    }
    const std::string lines = std::move(m_lines);
    m_lines.clear(); // even if writing fails, so that later lines are still tried
    const DirectoryLock lock(m_name);
    reopenIfOthersWrote();
    m_file->log(spdlog::details::log_msg(spdlog::string_view_t(), spdlog::level::info, lines));
    m_file->flush();
    ::stat(m_name.c_str(), &m_status);
}

} // namespace Nerix::Platform::Host
