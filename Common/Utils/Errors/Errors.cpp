#include "Common/Utils/Errors/Errors.h"

#include <cstring>
#include <locale>

namespace Nerix::Common::Utils {

namespace {

// strerror_r has two forms. The GNU form returns the text, which may be outside the buffer; the POSIX form
// fills the buffer and returns a code. The type of the result selects the overload of messageOf, which
// returns the text.
[[maybe_unused]] const char* messageOf(const char* text, const char*) {
    return text;
}
[[maybe_unused]] const char* messageOf(int, const char* buffer) {
    return buffer;
}

} // namespace

std::string get_string_from_errno(int errnum) {
    char buffer[512] = "";
    const char* const message = messageOf(::strerror_r(errnum, buffer, sizeof buffer), buffer);
    return " errno=" + std::to_string(errnum) + " (" + message + ")";
}

boost::error_info<tag_errinfo_stream, std::string> errinfo_errno(int errnum) {
    return {get_string_from_errno(errnum)};
}

std::ostringstream classicStream() {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream.exceptions(std::ios_base::badbit); // otherwise a text would be truncated silently
    return stream;
}

namespace detail {

std::string subjectName(const std::type_info& type, const void* address) {
    return errinfo_stream(type.name(), '=', address).value();
}

} // namespace detail

} // namespace Nerix::Common::Utils
