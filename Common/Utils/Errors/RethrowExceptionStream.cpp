#include "Common/Utils/Errors/RethrowExceptionStream.h"

#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Assert.h"
#include "Common/Utils/Errors/ThreadInterrupted.h"

#include <boost/exception/get_error_info.hpp>

#include <exception>

namespace Nerix::Common::Utils {

RethrowExceptionStream::RethrowExceptionStream() : m_uncaughtAtStart(std::uncaught_exceptions()) {}

RethrowExceptionStream::RethrowExceptionStream(const boost::exception_ptr& excPtr)
    : m_exception(excPtr), m_uncaughtAtStart(std::uncaught_exceptions()) {
    NerixAssert(excPtr);
}

RethrowExceptionStream::~RethrowExceptionStream() noexcept(false) {
    if (std::uncaught_exceptions() > m_uncaughtAtStart) {
        return;
    }
    try {
        rethrow();
    } catch (boost::exception& exception) {
        if (const std::string* const inner = boost::get_error_info<errinfo_rethrows>(exception)) {
            m_stream << '\n' << *inner;
        }
        exception << errinfo_rethrows(m_stream.str());
        throw;
    } catch (const boost::thread_interrupted&) {
        BOOST_THROW_EXCEPTION(thread_interrupted() << errinfo_rethrows(m_stream.str()));
    } catch (...) {
        NERIX_LOG_STREAM(INF) << "Rethrowing unknown exception: " << m_stream.str();
        throw;
    }
}

void RethrowExceptionStream::rethrow() const {
    if (m_exception) {
        boost::rethrow_exception(m_exception);
    }
    throw;
}

void rethrowWithContext(const char* function, const char* file, int line, const std::string& details) {
    {
        RethrowExceptionStream stream;
        stream.getStream() << " -> " << function << " (" << file << ":" << line << ") " << details;
    }
    __builtin_unreachable(); // the stream's destructor throws
}

} // namespace Nerix::Common::Utils
