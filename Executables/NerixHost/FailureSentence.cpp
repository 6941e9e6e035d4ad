#include "Executables/NerixHost/FailureSentence.h"

#include "Common/Utils/Errors/Errors.h"
#include "Executables/NerixHost/QuotedName.h"

#include <boost/exception/get_error_info.hpp>
#include <boost/filesystem/exception.hpp>

#include <new>
#include <system_error>

namespace Nerix {

namespace {

using namespace Common::Utils;

std::string sentence(const std::string& what, const std::string& path, const std::string& reason) {
    return "cannot " + what + ' ' + quotedName(path) + ": " + reason;
}

/// Returns the sentence for an exception, from its error information.
std::string fromErrorInfo(const boost::exception& failure) {
    const auto* const what = boost::get_error_info<errinfo_description>(failure);
    const auto* const path = boost::get_error_info<errinfo_path>(failure);
    const auto* const code = boost::get_error_info<errinfo_errorcode>(failure);
    if (what != nullptr && path != nullptr && code != nullptr) {
        return sentence(*what, path->native(),
                        *code == 0 ? "it changed during the scan" : std::generic_category().message(*code));
    }
    const auto* const text =
        boost::get_error_info<boost::error_info<tag_errinfo_stream, std::string>>(failure);
    return text != nullptr ? *text : "the scan failed";
}

} // namespace

std::string failureSentence(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const boost::filesystem::filesystem_error& caught) {
        return sentence("read", caught.path1().native(), caught.code().message());
    } catch (const boost::exception& caught) {
        return fromErrorInfo(caught);
    } catch (const std::bad_alloc&) {
        return "not enough memory";
    } catch (const std::exception& caught) {
        return caught.what();
    } catch (...) {
        return "the scan failed";
    }
}

} // namespace Nerix
