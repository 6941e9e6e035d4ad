#include "Common/Utils/Errors/Assert.h"

#include "Common/Logging/Log.h"

#include <boost/assert.hpp>

#include <cstdio>
#include <cstdlib>

using Nerix::Common::Logging::LoggingClass;

namespace {

/// noexcept: should reporting fail, the process still ends. message may be null.
[[noreturn]] void reportAndAbort(const char* expression, const char* message, const char* function,
                                 const char* file, long line) noexcept {
    // On the stack, as memory may have run out, and as long as the longest log message.
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

// Where BOOST_ASSERT and its kin end, as every target is built with BOOST_ENABLE_ASSERT_HANDLER.

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
