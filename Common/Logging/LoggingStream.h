#pragma once

#include "Common/Logging/LoggingClass.h"
#include "Common/Logging/NullStream.h"

#include <ostream>
#include <sstream>

namespace Nerix::Common::Logging {

/// Collects one message with operator<< and logs it when destroyed, at the end of the statement that made it.
/// '%' characters in the message are safe. At level NONE everything is discarded. When an operand throws,
/// what was collected so far is logged. The tag and the file name must outlive the object.
class LoggingStream {
public:
    /// Writing to the stream throws std::bad_alloc when there is no memory for the message.
    LoggingStream(const char* tag, LoggingClass::Level level, const char* fileName, int line);

    /// Throws std::bad_alloc, unless an exception is already propagating.
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
