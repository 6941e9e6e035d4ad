#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Nerix::Common::Logging {

class LoggingStream;

/// Logs to the platform's system log, or to the console when the process is about to abort.
///
/// A message becomes one or more records of the form "[process][thread id and name][record number][LEVEL]
/// text", each with at most maxMessageLength bytes of text. Failures of the log are not reported; only
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

    /// Receives a formatted message. May modify text during the call.
    using Sink = void (*)(const char* tag, Level level, char* text);

    /// The maximum length of the text of a record in the system log, in bytes.
    static constexpr std::size_t maxMessageLength = 768;

    /// Sets the process name in all later records to "PROGRAM-VERSION", with the version of the package. Call
    /// it once, before other threads exist.
    static void init(const char* programName);

    /// Returns a pointer to the part of path after its last '/'.
    static const char* shortenPath(const char* path);

    /// Formats a message like printf, truncates it to 16383 bytes and passes it to the sink. Does nothing at
    /// level NONE or VERBOSE. Exceptions from the sink propagate.
    static void print(Sink sink, const char* tag, Level level, const char* format, ...)
        __attribute__((format(printf, 4, 5)));

    /// Writes text to the system log; the sink for ordinary logging. Splits text longer than maxMessageLength
    /// into records: at each newline, then long lines at that length.
    static void printLines(const char* tag, Level level, char* text);

    /// Writes text to the system console; the sink for failed assertions. Standard output stays redirected to
    /// the console, so use this only if the process is about to end. If there is no console, writes to
    /// standard error instead, and standard output is closed.
    static void printDirect(const char* tag, Level level, char* text);

    /// Returns "VERBOSE" to "FTL", or "UNKNOWN LEVEL"; a static string.
    static const char* logLevelToString(Level level);

    // The steps of printLines.

    /// Writes a line as consecutive records of at most maxMessageLength bytes; an empty line becomes one
    /// empty record. end points past the line. *end is overwritten during the call and then restored.
    static void printChunked(const char* tag, Level level, char* begin, char* end);

    /// Writes one record, with the next record number and the calling thread's id and name.
    static void smartPrintImpl(const char* tag, Level level, const char* text);

    /// Writes one record. If the platform rejects it, it is lost.
    static void printImpl(const char* tag, const char* thread, std::uint32_t recordNumber, Level level,
                          const char* text);

    /// Writes the calling thread's kernel id, a space and its kernel name into buffer, truncated to size - 1
    /// characters and terminated.
    static void getThreadId(char* buffer, std::size_t size);

private:
    /// Returns the process name, which is empty until init. It is created by the first call and never
    /// destroyed, because global objects may log in their constructors and destructors.
    static std::string& processName();
};

} // namespace Nerix::Common::Logging
