#pragma once

#include <boost/exception_ptr.hpp>

#include <ostream>
#include <sstream>

namespace Nerix::Common::Utils {

/// Rethrows an exception with a line of context added to it. Lives in a catch-all handler, on the thread that
/// handles the exception, and leaves it by throwing:
///
///     } catch (...) {
///         NERIX_RETHROW_WITH_CONTEXT("Path: " << path);
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

    /// Throws the exception with its context. When writing the context line threw, does nothing: that exception is
    /// already on its way, in place of the other.
    ~RethrowExceptionStream() noexcept(false);

    /// Where the context line is written.
    std::ostream& getStream() { return m_stream; }

private:
    void rethrow() const;

    boost::exception_ptr m_exception; ///< empty: the exception being handled
    std::ostringstream m_stream;
    int m_uncaughtAtStart; ///< tells leaving by an exception of the context line from leaving normally
};

} // namespace Nerix::Common::Utils

/// Ends a catch-all handler: rethrows with " -> function (file:line) " and the details, which are written as
/// by stream << details.
#define NERIX_RETHROW_WITH_CONTEXT(details)                                                                  \
    do {                                                                                                     \
        {                                                                                                    \
            ::Nerix::Common::Utils::RethrowExceptionStream rethrowStream_;                                   \
            rethrowStream_.getStream()                                                                       \
                << " -> " << __PRETTY_FUNCTION__ << " (" << __FILE__ << ":" << __LINE__ << ") "              \
                << details; /* NOLINT(bugprone-macro-parentheses) */                                         \
        }                                                                                                    \
        __builtin_unreachable();                                                                             \
    } while (false)
