#include "Common/Utils/Errors/SupportCode.h"

#include "Common/Utils/Errors/Errors.h"

#include <boost/exception/errinfo_nested_exception.hpp>
#include <boost/exception/get_error_info.hpp>
#include <boost/exception_ptr.hpp>

namespace Nerix::Common::Utils {

namespace {

std::string ownSupportCode(const boost::exception& exception) {
    const std::string* const code = boost::get_error_info<errinfo_supportcode>(exception);
    return code == nullptr ? std::string() : *code;
}

/// Returns "FIRST-SECOND", or only one of them if the other is empty.
std::string joined(const std::string& first, const std::string& second) {
    return first.empty() || second.empty() ? first + second : first + "-" + second;
}

} // namespace

void add_supportcode_context(boost::exception& target, const boost::exception& source,
                             const std::string& code) {
    const std::string inner = ownSupportCode(source);
    target << errinfo_supportcode(inner.empty() ? code : code + "-" + inner);
}

void add_supportcode_context(boost::exception& exception, const std::string& code) {
    add_supportcode_context(exception, exception, code);
}

std::string get_combined_supportcode(const boost::exception& exception) {
    std::string own = ownSupportCode(exception);
    const boost::exception_ptr* const nested =
        boost::get_error_info<boost::errinfo_nested_exception>(exception);
    if (nested == nullptr) {
        return own;
    }
    try {
        boost::rethrow_exception(*nested);
    } catch (const boost::exception& inner) {
        return joined(own, get_combined_supportcode(inner));
    } catch (...) {
        return own; // an exception without entries has no code
    }
}

} // namespace Nerix::Common::Utils
