#pragma once

#include <boost/exception/error_info.hpp>
#include <boost/exception/exception.hpp>
#include <boost/exception/info.hpp>

#include <exception>

/// Exceptions of the package's binary number format. They are thrown only by other programs of the package.
namespace Nerix::Common::IO::binary_format {

class serialization_exception : public virtual std::exception, public virtual boost::exception {};

/// Reports that a value does not fit into the bytes reserved for it; contains the number of these bytes.
class lossy_conversion : public virtual serialization_exception {};

namespace detail {
using errinfo_cant_store_type_in_this_number_of_bytes =
    boost::error_info<struct tag_cant_store_type_in_this_number_of_bytes, int>;
}

} // namespace Nerix::Common::IO::binary_format
