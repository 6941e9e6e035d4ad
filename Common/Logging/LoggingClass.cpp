#include "Common/Logging/LoggingClass.h"

#include "Common/Base/NoDestructor.h"
#include "Common/Logging/AtomicAddFetch.h"
#include "Common/Logging/PackageVersion.h"
#include "PlatformInterfaces/dlog.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Nerix::Common::Logging {

namespace {

constexpr std::size_t threadFieldSize = 64;

/// Formats a message into buffer. Returns true if the text is not empty and was not truncated.
bool formatInto(char* buffer, std::size_t size, const char* format, std::va_list arguments)
    __attribute__((format(printf, 3, 0)));

bool formatInto(char* buffer, std::size_t size, const char* format, std::va_list arguments) {
    const int length = std::vsnprintf(buffer, size, format, arguments);
    return length > 0 && static_cast<std::size_t>(length) < size;
}

struct LevelLayout {
    LoggingClass::Level level;
    const char* name;
    DlogBuffer buffer;
    DlogPriority priority;
    const char* format; ///< takes process name, thread field, record number (%u) and text
};

constexpr LevelLayout layouts[] = {
    {LoggingClass::VERBOSE, "VERBOSE", DLOG_BUFFER_MAIN, DLOG_PRIORITY_VERBOSE, "[%s][%s][%u][VERBOSE] %s"},
    {LoggingClass::DBG, "DBG", DLOG_BUFFER_MAIN, DLOG_PRIORITY_DEBUG, "[%s][%s][%u][DBG] %s"},
    {LoggingClass::INF, "INF", DLOG_BUFFER_MAIN, DLOG_PRIORITY_INFO, "[%s][%s][%u][INF] %s"},
    {LoggingClass::WRN, "WRN", DLOG_BUFFER_MAIN, DLOG_PRIORITY_WARNING, "[%s][%s][%u][WRN] %s"},
    // Deliberately WARNING: the ERROR priority is reserved for unknown levels.
    {LoggingClass::ERR, "ERR", DLOG_BUFFER_SYSTEM, DLOG_PRIORITY_WARNING, "[%s][%s][%u][ERR] %s"},
    {LoggingClass::FTL, "FTL", DLOG_BUFFER_SYSTEM, DLOG_PRIORITY_FATAL, "[%s][%s][%u][FTL] %s"},
};
// Records of an unknown level are marked INF, with the priority ERROR.
constexpr LevelLayout otherLayout = {LoggingClass::NONE, "UNKNOWN LEVEL", DLOG_BUFFER_SYSTEM,
                                     DLOG_PRIORITY_ERROR, "[%s][%s][%u][INF] %s"};

const LevelLayout& layoutOf(LoggingClass::Level level) {
    for (const LevelLayout& layout : layouts) {
        if (layout.level == level) {
            return layout;
        }
    }
    return otherLayout;
}

} // namespace

std::string& LoggingClass::processName() {
    static NoDestructor<std::string> name;
    return *name;
}

void LoggingClass::init(const char* programName) {
    processName() = std::string(programName) + "-" + packageVersion;
}

const char* LoggingClass::shortenPath(const char* path) {
    const char* const slash = std::strrchr(path, '/');
    return slash == nullptr ? path : slash + 1;
}

void LoggingClass::print(Sink sink, const char* tag, Level level, const char* format, ...) {
    if (level <= VERBOSE) {
        return;
    }
    std::va_list arguments;

    char shortText[1024];
    va_start(arguments, format);
    const bool isShort = formatInto(shortText, sizeof shortText, format, arguments);
    va_end(arguments);
    if (isShort) {
        sink(tag, level, shortText);
        return;
    }

    constexpr std::size_t longTextSize = 16384;
    const auto longText = std::make_unique<char[]>(longTextSize);
    va_start(arguments, format);
    formatInto(longText.get(), longTextSize, format, arguments);
    va_end(arguments);
    longText[longTextSize - 1] = '\0'; // in case formatting failed before the text was terminated
    sink(tag, level, longText.get());
}

void LoggingClass::printLines(const char* tag, Level level, char* text) {
    const std::size_t length = std::strlen(text);
    if (length <= maxMessageLength) {
        smartPrintImpl(tag, level, text);
        return;
    }
    char* const end = text + length;
    for (char* line = text; line < end;) {
        char* const newline =
            static_cast<char*>(std::memchr(line, '\n', static_cast<std::size_t>(end - line)));
        char* const lineEnd = newline == nullptr ? end : newline;
        printChunked(tag, level, line, lineEnd);
        line = lineEnd + 1;
    }
}

void LoggingClass::printChunked(const char* tag, Level level, char* begin, char* end) {
    do {
        char* const cut =
            end - begin > static_cast<std::ptrdiff_t>(maxMessageLength) ? begin + maxMessageLength : end;
        const char overwritten = *cut;
        *cut = '\0';
        smartPrintImpl(tag, level, begin);
        *cut = overwritten;
        begin = cut;
    } while (begin < end);
}

void LoggingClass::smartPrintImpl(const char* tag, Level level, const char* text) {
    static std::uint32_t lineNo = 0;
    const std::uint32_t recordNumber = PlatformDependent::atomic_add_fetch(&lineNo, 1);
    char thread[threadFieldSize];
    getThreadId(thread, sizeof thread);
    printImpl(tag, thread, recordNumber, level, text);
}

void LoggingClass::printImpl(const char* tag, const char* thread, std::uint32_t recordNumber, Level level,
                             const char* text) {
    const LevelLayout& layout = layoutOf(level);
    // The result is ignored, because there is nowhere else to report a failure.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral" // every format takes these four arguments
    __dlog_print(layout.buffer, layout.priority, tag, layout.format, processName().c_str(), thread,
                 recordNumber, text);
#pragma GCC diagnostic pop
}

void LoggingClass::getThreadId(char* buffer, std::size_t size) {
    char name[16] = ""; // stays empty if the call fails
    ::prctl(PR_GET_NAME, name);
    std::snprintf(buffer, size, "%d %s", static_cast<int>(::syscall(SYS_gettid)), name);
}

const char* LoggingClass::logLevelToString(Level level) {
    return layoutOf(level).name;
}

void LoggingClass::printDirect(const char* tag, Level level, char* text) {
    char thread[threadFieldSize];
    getThreadId(thread, sizeof thread);
    // Not closed, because it is stdout, which stays redirected to the console.
    std::FILE* const console = std::freopen("/dev/console", "w", stdout);
    if (console == nullptr) {
        std::fprintf(stderr, "Cannot open /dev/console\n%s: Direct [%s][%s] %s\n", tag,
                     logLevelToString(level), thread, text);
        return;
    }
    std::fprintf(console, "%s: Direct [%s][%s] %s\n", tag, logLevelToString(level), thread, text);
    // The caller then aborts, which does not flush. The pause lets a serial console drain.
    std::fflush(console);
    const std::timespec pause{0, 100'000'000};
    ::nanosleep(&pause, nullptr);
}

} // namespace Nerix::Common::Logging
