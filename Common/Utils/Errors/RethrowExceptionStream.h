#pragma once

#include "Common/Utils/Errors/Errors.h"

#include <boost/exception_ptr.hpp>

#include <ostream>
#include <sstream>
#include <string>

namespace Nerix::Common::Utils {

/// Adds a line of context to an exception and rethrows it in the destructor. Create it in a catch-all
/// handler, on the thread that handles the exception. Usually the macro below does that:
///
///     } catch (...) {
///         NERIX_RETHROW_WITH_CONTEXT("Path: ", path);
///     }
///
/// The line is put in front of the exception's errinfo_rethrows entry. A boost::thread_interrupted, which
/// cannot have entries, is replaced by Utils::thread_interrupted. Any other exception without entries is
/// rethrown unchanged, and the line is written to the system log.
class RethrowExceptionStream {
public:
    /// Makes the destructor rethrow the exception being handled then; there must be one.
    RethrowExceptionStream();

    /// Makes the destructor rethrow the exception in excPtr. Asserts that excPtr is not empty.
    explicit RethrowExceptionStream(const boost::exception_ptr& excPtr);

    RethrowExceptionStream(const RethrowExceptionStream&) = delete;
    RethrowExceptionStream& operator=(const RethrowExceptionStream&) = delete;

    /// Rethrows the exception with the context line. Does nothing if writing that line threw, because that
    /// exception is already propagating.
    ~RethrowExceptionStream() noexcept(false);

    /// Returns the stream to which the context line is written.
    std::ostream& getStream() { return m_stream; }

private:
    void rethrow() const;

    boost::exception_ptr m_exception; ///< if empty, the exception being handled is rethrown
    std::ostringstream m_stream = classicStream();
    int m_uncaughtAtStart; ///< a higher count later means that writing the context line threw
};

/// Rethrows the exception being handled with the context line " -> function (file:line) details". Use the
/// macro below instead, except in a helper that reports the name and line of another function.
[[noreturn]] void rethrowWithContext(const char* function, const char* file, int line,
                                     const std::string& details);

} // namespace Nerix::Common::Utils

/// Rethrows the exception being handled with the context line " -> function (file:line) details", where
/// details are the arguments, concatenated as by errinfo_stream. Put it at the end of a catch-all handler.
#define NERIX_RETHROW_WITH_CONTEXT(...)                                                                      \
    ::Nerix::Common::Utils::rethrowWithContext(__PRETTY_FUNCTION__, __FILE__, __LINE__,                      \
                                               ::Nerix::Common::Utils::errinfo_stream(__VA_ARGS__).value())
