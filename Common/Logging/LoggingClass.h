#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Nerix::Common::Logging {

class LoggingStream;

/// Logs to the platform's system log, or to the console when the process is about to abort.
///
/// A message becomes one or more records of at most maxMessageLength bytes of text, each laid out as
/// "[process][thread id and name][record number][LEVEL] text". Failures of the log are not reported; only
/// std::bad_alloc is thrown. All functions except init are thread-safe.
class LoggingClass {
public:
    enum Level {
        NONE = 0,    ///< only for LoggingStream: discard the message
        VERBOSE = 1, ///< never emitted
        DBG = 2,
        INF = 3,
        WRN = 4,
        ERR = 5,
        FTL = 6 ///< failed assertions, exceptions that reach main
    };

    using LoggingStream = Logging::LoggingStream;

    /// Takes a formatted message; may write into text until it returns.
    using Sink = void (*)(const char* tag, Level level, char* text);

    /// The longest text of one system-log record, in bytes.
    static constexpr std::size_t maxMessageLength = 768;

    /// Sets the process name of all later records to programName and the package version. Call it once,
    /// before other threads exist.
    static void init(const char* programName);

    /// Returns a pointer to the part of path after its last '/'.
    static const char* shortenPath(const char* path);

    /// Formats a message as printf does, cuts it to 16383 bytes and hands it to the sink, once. Does nothing
    /// at NONE or VERBOSE. Exceptions from the sink propagate.
    static void print(Sink sink, const char* tag, Level level, const char* format, ...)
        __attribute__((format(printf, 4, 5)));

    /// Sink of ordinary logging: the system log, long texts as several records, cut at newlines first.
    static void printLines(const char* tag, Level level, char* text);

    /// Sink of the assertion handlers: one line on the system console. Standard output stays on the console
    /// afterwards, so this is for a process that is about to end. Without a console the line goes to standard
    /// error, and standard output is closed.
    static void printDirect(const char* tag, Level level, char* text);

    /// "VERBOSE" to "FTL", or "UNKNOWN LEVEL". The text is static.
    static const char* logLevelToString(Level level);

    // The steps of printLines.

    /// One line as consecutive records of at most maxMessageLength bytes; an empty line is one empty record.
    /// end points past the line; *end is overwritten during the call.
    static void printChunked(const char* tag, Level level, char* begin, char* end);

    /// One record: takes the next record number and names the calling thread.
    static void smartPrintImpl(const char* tag, Level level, const char* text);

    /// One record as given. A record that the platform does not take is lost.
    static void printImpl(const char* tag, const char* thread, std::uint32_t recordNumber, Level level,
                          const char* text);

    /// The calling thread's kernel id, a blank and its kernel name, cut to size - 1 characters
    /// and terminated.
    static void getThreadId(char* buffer, std::size_t size);

private:
    /// Empty until init. A function, and never destroyed: a static member could be made after, and destroyed
    /// before, a global object that logs.
    static std::string& processName();
};

} // namespace Nerix::Common::Logging
