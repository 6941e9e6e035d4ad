#pragma once

#include "Common/Logging/LoggingClass.h"
#include "Common/Logging/NullStream.h"

#include <ostream>
#include <sstream>

namespace Nerix::Common::Logging {

/// Collects one message with operator<< and logs it when destroyed, at the end of the statement that created
/// it. The message may contain '%'. At level NONE everything is discarded. If an operand throws, the text
/// collected so far is logged. tag and fileName must outlive the object.
class LoggingStream {
public:
    /// Begins a message. Writing to the stream throws std::bad_alloc if memory is exhausted.
    LoggingStream(const char* tag, LoggingClass::Level level, const char* fileName, int line);

    /// Logs the message. Throws std::bad_alloc if memory is exhausted, unless another exception is already
    /// propagating.
    ~LoggingStream() noexcept(false);

    LoggingStream(const LoggingStream&) = delete;
    LoggingStream& operator=(const LoggingStream&) = delete;

    std::ostream& getStream();

private:
    const char* m_tag;
    const char* m_fileName;
    int m_line;
    LoggingClass::Level m_level;
    std::ostringstream m_stream;
    Utils::nullostream m_nullStream;
    int m_uncaughtAtStart; ///< a higher count later means that an operand threw
};

} // namespace Nerix::Common::Logging
