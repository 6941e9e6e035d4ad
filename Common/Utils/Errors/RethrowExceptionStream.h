#pragma once

#include "Common/Utils/Errors/Errors.h"

#include <boost/exception_ptr.hpp>

#include <ostream>
#include <sstream>
#include <string>

namespace Nerix::Common::Utils {

/// Rethrows an exception with a line of context added to it. Lives in a catch-all handler, on the thread that
/// handles the exception, and leaves it by throwing:
///
///     } catch (...) {
///         NERIX_RETHROW_WITH_CONTEXT("Path: ", path);
///     }
///
/// The line goes in front of the exception's errinfo_rethrows entry. A boost::thread_interrupted, which has
/// no entries, is replaced by Utils::thread_interrupted; anything else without entries is rethrown as it is,
/// and the line goes to the system log.
class RethrowExceptionStream {
public:
    /// Rethrows the exception being handled; there must be one when the object is destroyed.
    RethrowExceptionStream();

    /// Rethrows what excPtr holds. Asserts that it is not empty.
    explicit RethrowExceptionStream(const boost::exception_ptr& excPtr);

    RethrowExceptionStream(const RethrowExceptionStream&) = delete;
    RethrowExceptionStream& operator=(const RethrowExceptionStream&) = delete;

    /// Rethrows with the context; does nothing if writing the context line threw, because that exception is
    /// already propagating.
    ~RethrowExceptionStream() noexcept(false);

    /// Where the context line is written.
    std::ostream& getStream() { return m_stream; }

private:
    void rethrow() const;

    boost::exception_ptr m_exception; ///< empty: the exception being handled
    std::ostringstream m_stream = classicStream();
    int m_uncaughtAtStart; ///< tells whether writing the context line has thrown
};

/// Rethrows the exception being handled with the context line " -> function (file:line) details". Use it
/// directly only when the handler lives in a helper that must report another function's name and line;
/// otherwise use the macro below.
[[noreturn]] void rethrowWithContext(const char* function, const char* file, int line,
                                     const std::string& details);

} // namespace Nerix::Common::Utils

/// Ends a catch-all handler: rethrows with " -> function (file:line) " and the details, composed as
/// by errinfo_stream.
#define NERIX_RETHROW_WITH_CONTEXT(...)                                                                      \
    ::Nerix::Common::Utils::rethrowWithContext(__PRETTY_FUNCTION__, __FILE__, __LINE__,                      \
                                               ::Nerix::Common::Utils::errinfo_stream(__VA_ARGS__).value())
