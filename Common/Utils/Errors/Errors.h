#pragma once

#include "Common/Utils/Errors/IDebugName.h"

#include <boost/exception/error_info.hpp>
#include <boost/exception/exception.hpp>
#include <boost/exception/info.hpp>
#include <boost/filesystem/path.hpp>
#include <boost/throw_exception.hpp>

#include <exception>
#include <sstream>
#include <string>
#include <type_traits>
#include <typeinfo>

/// The exceptions of the package carry their information in error-information entries. There is at most one
/// entry per tag; a second one replaces the first. Throw them with BOOST_THROW_EXCEPTION, which adds
/// function, file and line:
///
///     BOOST_THROW_EXCEPTION(GenericException() << errinfo_stream("can't read file: ", path));

namespace Nerix::Common::Utils {

/// General-purpose exception. what() is not informative; see the entries.
class GenericException : public virtual std::exception, public virtual boost::exception {};

/// Free text composed from several values; made by errinfo_stream or errinfo_errno.
struct tag_errinfo_stream;
/// A single text value.
using errinfo_string = boost::error_info<struct tag_errinfo_string, std::string>;
/// The path on which the operation failed.
using errinfo_path = boost::error_info<struct tag_errinfo_path, boost::filesystem::path>;
/// A description of the failed operation.
using errinfo_description = boost::error_info<struct tag_errinfo_description, std::string>;
/// The result code of a platform call.
using errinfo_errorcode = boost::error_info<struct tag_errinfo_errorcode, int>;
/// The identity of the object on which the operation failed; made by errinfo_subject.
struct tag_errinfo_subject;
/// Support codes joined by "-", outermost first; see SupportCode.h.
using errinfo_supportcode = boost::error_info<struct tag_errinfo_supportcode, std::string>;
/// Context lines added while the exception propagates, outermost first; see RethrowExceptionStream.
using errinfo_rethrows = boost::error_info<struct tag_errinfo_rethrows, std::string>;

/// Returns a stream in the classic locale, regardless of the global locale. Writing to it throws
/// std::bad_alloc if memory is exhausted.
std::ostringstream classicStream();

/// Concatenates the arguments as written by operator<< in the classic locale. Paths are written in double
/// quotes, with '&' before each '"' and '&'.
template <class... Arguments>
boost::error_info<tag_errinfo_stream, std::string> errinfo_stream(const Arguments&... arguments) {
    std::ostringstream stream = classicStream();
    (stream << ... << arguments);
    return {stream.str()};
}

/// Returns " errno=NUMBER (MESSAGE)", with the system's message for the number.
std::string get_string_from_errno(int errnum);

/// Returns get_string_from_errno(errnum) as a stream entry, which replaces an earlier errinfo_stream.
boost::error_info<tag_errinfo_stream, std::string> errinfo_errno(int errnum);

namespace detail {
std::string subjectName(const std::type_info& type, const void* address);
}

/// Identifies an object: by its debugName() if it is an IDebugName, otherwise by dynamic type and address.
template <class Subject>
boost::error_info<tag_errinfo_subject, std::string> errinfo_subject(const Subject& subject) {
    if constexpr (std::is_base_of_v<IDebugName, Subject>) {
        return {static_cast<const IDebugName&>(subject).debugName()};
    } else {
        if constexpr (std::is_polymorphic_v<Subject>) {
            if (const auto* const named = dynamic_cast<const IDebugName*>(&subject)) {
                return {named->debugName()};
            }
        }
        return {detail::subjectName(typeid(subject), static_cast<const void*>(std::addressof(subject)))};
    }
}

} // namespace Nerix::Common::Utils
