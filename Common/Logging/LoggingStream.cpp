#include "Common/Logging/LoggingStream.h"

#include <exception>

namespace Nerix::Common::Logging {

LoggingStream::LoggingStream(const char* tag, LoggingClass::Level level, const char* fileName, int line)
    : m_tag(tag),
      m_fileName(fileName),
      m_line(line),
      m_level(level),
      m_uncaughtAtStart(std::uncaught_exceptions()) {
    m_stream.exceptions(std::ios_base::badbit); // otherwise a message would be truncated silently
}

LoggingStream::~LoggingStream() noexcept(false) {
    if (m_level == LoggingClass::NONE) {
        return;
    }
    try {
        LoggingClass::print(&LoggingClass::printLines, m_tag, m_level, "%s:%d>%s", m_fileName, m_line,
                            m_stream.str().c_str());
    } catch (...) {
        if (std::uncaught_exceptions() == m_uncaughtAtStart) {
            throw; // only then, because a second exception would terminate the process
        }
    }
}

std::ostream& LoggingStream::getStream() {
    return m_level == LoggingClass::NONE ? static_cast<std::ostream&>(m_nullStream) : m_stream;
}

} // namespace Nerix::Common::Logging
