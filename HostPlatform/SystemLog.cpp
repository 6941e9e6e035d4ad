// Each buffer, main and system, has an spdlog logger; NERIX_HOST_LOG selects its sink. A file is written in
// batches (BatchingSink): records stay in memory until the batch is full, a warning is logged, a setting is
// written (SettingsStore), a second has passed (flushEachSecond), or the process ends (end).

#include "HostPlatform/SystemLog.h"

#include "Common/Base/EscapedText.h"
#include "HostPlatform/BatchingSink.h"
#include "HostPlatform/HostDirectories.h"
#include "PlatformInterfaces/dlog.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/sinks/syslog_sink.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <system_error>
#include <thread>

namespace Nerix::Platform::Host {

namespace {

void reportOnce(const std::string& failure) {
    static std::atomic<bool> isReported{false};
    if (!isReported.exchange(true)) {
        std::fprintf(stderr, "nerix host log: records are lost: %s\n", failure.c_str());
    }
}

/// True if the last write of this thread failed. Set by the error handler, which spdlog calls on that thread.
thread_local bool lastWriteFailed = false;

enum class Kind { file, syslog, standardError, nowhere };

spdlog::sink_ptr makeSink(Kind kind, const std::string& bufferName) {
    switch (kind) {
    case Kind::syslog:
        return std::make_shared<spdlog::sinks::syslog_sink_mt>("nerix", 0, 0, false);
    case Kind::standardError:
        return std::make_shared<spdlog::sinks::stderr_sink_mt>();
    case Kind::nowhere:
        return std::make_shared<spdlog::sinks::null_sink_mt>();
    case Kind::file:
        break;
    }
    return std::make_shared<BatchingSink>((logDirectory() / (bufferName + ".log")).string());
}

Kind chosenKind() {
    const char* const variable = ::secure_getenv("NERIX_HOST_LOG");
    const std::string chosen = variable == nullptr ? "" : variable;
    if (chosen == "syslog") {
        return Kind::syslog;
    }
    if (chosen == "stderr") {
        return Kind::standardError;
    }
    if (!chosen.empty() && chosen != "file") {
        std::fprintf(stderr,
                     "nerix host log: NERIX_HOST_LOG is '%s', not file, syslog or stderr; using file\n",
                     Common::withoutControls(chosen).c_str());
    }
    return Kind::file;
}

std::shared_ptr<spdlog::logger> makeLogger(Kind kind, const std::string& bufferName) {
    try {
        auto logger = std::make_shared<spdlog::logger>(bufferName, makeSink(kind, bufferName));
        logger->set_pattern("%Y-%m-%dT%H:%M:%S.%e%z %v");
        logger->set_level(spdlog::level::trace);
        logger->set_error_handler([](const std::string& failure) {
            lastWriteFailed = true;
            reportOnce(failure);
        });
        return logger;
    } catch (const std::exception& failure) {
        reportOnce(failure.what());
        return nullptr;
    }
}

/// Returns the level for sinks that use it; the lines themselves contain the priority.
spdlog::level::level_enum levelOf(int priority) {
    switch (priority) {
    case DLOG_PRIORITY_VERBOSE:
        return spdlog::level::trace;
    case DLOG_PRIORITY_DEBUG:
        return spdlog::level::debug;
    case DLOG_PRIORITY_INFO:
        return spdlog::level::info;
    case DLOG_PRIORITY_WARNING:
        return spdlog::level::warn;
    case DLOG_PRIORITY_FATAL:
        return spdlog::level::critical;
    default:
        return spdlog::level::err;
    }
}

char letterOf(int priority) {
    constexpr std::string_view letters = "??VDIWEF";
    return priority >= 0 && static_cast<std::size_t>(priority) < letters.size()
               ? letters[static_cast<std::size_t>(priority)]
               : '?';
}

} // namespace

SystemLog::SystemLog(bool discardsRecords) {
    const Kind kind = discardsRecords ? Kind::nowhere : chosenKind();
    m_main = makeLogger(kind, "main");
    m_system = makeLogger(kind, "system");
    if (kind != Kind::file) {
        return; // other sinks do not need flushing
    }
    try {
        m_flusher = std::thread([this] { flushEachSecond(); });
    } catch (const std::system_error&) {
        writeThrough();
    }
}

void SystemLog::writeThrough() {
    for (const auto& logger : {m_main, m_system}) {
        if (logger) {
            logger->flush_on(spdlog::level::trace);
        }
    }
}

void SystemLog::flushEachSecond() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_wakeUp.wait_for(lock, std::chrono::seconds(1), [this] { return m_isEnding; })) {
        flush();
    }
}

void SystemLog::end() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isEnding = true;
        m_wakeUp.notify_one();
    }
    if (m_flusher.joinable()) {
        m_flusher.join();
    }
    writeThrough(); // for records logged after this
    flush();
}

bool SystemLog::write(int buffer, int priority, const char* tag, const std::string& text) {
    const auto& logger = buffer == DLOG_BUFFER_MAIN ? m_main : m_system;
    if (!logger) {
        return false;
    }
    std::string line;
    line.reserve(text.size() + 64);
    line += letterOf(priority);
    line += ' ';
    line += tag;
    line += ' ';
    line += Common::escaped(text);
    lastWriteFailed = false;
    logger->log(levelOf(priority), spdlog::string_view_t(line));
    if (priority >= DLOG_PRIORITY_WARNING) {
        flush();
    }
    return !lastWriteFailed;
}

void SystemLog::flush() {
    for (const auto& logger : {m_main, m_system}) {
        if (logger) {
            logger->flush();
        }
    }
}

} // namespace Nerix::Platform::Host
