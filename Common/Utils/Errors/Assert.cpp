#include "Common/Utils/Errors/Assert.h"

#include "Common/Logging/Log.h"

#include <boost/assert.hpp>

#include <cstdio>
#include <cstdlib>

using Nerix::Common::Logging::LoggingClass;

namespace {

/// Reports and aborts. noexcept, so that the process ends even if reporting fails. message may be null.
[[noreturn]] void reportAndAbort(const char* expression, const char* message, const char* function,
                                 const char* file, long line) noexcept {
    // On the stack, because memory may be exhausted; sized for the longest log message.
    char text[16384];
    std::snprintf(text, sizeof text, "ASSERTION FAILED: %s, %s, %s:%ld%s%s", expression, function,
                  LoggingClass::shortenPath(file), line,
                  message == nullptr ? "" : "\nMESSAGE: ", message == nullptr ? "" : message);
    LoggingClass::print(&LoggingClass::printDirect, NERIX_LOG_TAG, LoggingClass::FTL, "%s", text);
    NERIX_LOG(FTL, "%s", text);
    std::abort();
}

} // namespace

namespace boost {

// BOOST_ASSERT and BOOST_ASSERT_MSG call these, because every target defines BOOST_ENABLE_ASSERT_HANDLER.

void assertion_failed(const char* expr, const char* function, const char* file, long line) {
    reportAndAbort(expr, nullptr, function, file, line);
}

void assertion_failed_msg(const char* expr, const char* msg, const char* function, const char* file,
                          long line) {
    reportAndAbort(expr, msg, function, file, line);
}

} // namespace boost

namespace Nerix::Common::Utils {

void NerixAssertionFailed(const char* expression, const char* function, const char* file, long line) {
    boost::assertion_failed(expression, function, file, line);
    __builtin_unreachable();
}

void NerixAssertionFailedMsg(const char* expression, const char* message, const char* function,
                             const char* file, long line) {
    boost::assertion_failed_msg(expression, message, function, file, line);
    __builtin_unreachable();
}

} // namespace Nerix::Common::Utils
