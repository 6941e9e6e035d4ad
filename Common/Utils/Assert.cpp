#include "Common/Utils/Assert.h"

#include "Common/Logging/Log.h"

#include <boost/assert.hpp>

#include <cstdlib>
#include <string>

using Nerix::Common::Logging::LoggingClass;

namespace {

std::string report(const char* expression, const char* function, const char* file, long line) {
    return std::string("ASSERTION FAILED: ") + expression + ", " + function + ", " +
           LoggingClass::shortenPath(file) + ":" + std::to_string(line);
}

[[noreturn]] void reportAndAbort(const std::string& text) {
    LoggingClass::print(&LoggingClass::printDirect, NERIX_LOG_TAG, LoggingClass::FTL, "%s", text.c_str());
    NERIX_LOG(FTL, "%s", text.c_str());
    std::abort();
}

} // namespace

namespace boost {

// Where BOOST_ASSERT and its kin end, as every target is built with BOOST_ENABLE_ASSERT_HANDLER.

void assertion_failed(const char* expr, const char* function, const char* file, long line) {
    reportAndAbort(report(expr, function, file, line));
}

void assertion_failed_msg(const char* expr, const char* msg, const char* function, const char* file,
                          long line) {
    reportAndAbort(report(expr, function, file, line) + "\nMESSAGE: " + msg);
}

} // namespace boost

namespace Nerix::Common::Utils {

void NerixAssertionFailed(const char* expression, const char* function, const char* file, long line) {
    boost::assertion_failed(expression, function, file, line);
    std::abort(); // not reached; Boost declares its handlers as returning
}

void NerixAssertionFailedMsg(const char* expression, const char* message, const char* function,
                             const char* file, long line) {
    boost::assertion_failed_msg(expression, message, function, file, line);
    std::abort(); // not reached, as above
}

} // namespace Nerix::Common::Utils
