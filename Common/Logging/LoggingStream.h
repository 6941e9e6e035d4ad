#pragma once

#include "Common/Logging/LoggingClass.h"
#include "Common/Logging/NullStream.h"

#include <ostream>
#include <sstream>

namespace Nerix::Common::Logging {

/// Collects one message with operator<< and logs it when destroyed, at the end of the statement that made it.
/// '%' characters in the message are safe. At level NONE everything is discarded. Of a message whose making
/// throws, what was collected is logged. The tag and the file name are not owned and must outlive the object.
class LoggingStream {
public:
    LoggingStream(const char* tag, LoggingClass::Level level, const char* fileName, int line);

    /// Throws when there is no memory for the message, unless another exception is on its way already.
    ~LoggingStream() noexcept(false);

    LoggingStream(const LoggingStream&) = delete;
    LoggingStream& operator=(const LoggingStream&) = delete;

    std::ostream& getStream();

private:
    void print() const;

    const char* m_tag;
    const char* m_fileName;
    int m_line;
    LoggingClass::Level m_level;
    int m_uncaughtAtStart; ///< tells leaving by an exception of the message from leaving normally
    std::ostringstream m_stream;
    Utils::nullostream m_nullStream;
};

} // namespace Nerix::Common::Logging
