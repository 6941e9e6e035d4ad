#pragma once

#include <boost/exception/exception.hpp>

#include <exception>

namespace Nerix::Common::IO::IOExceptions {

/// Reports that a data path was misused.
class IOStreamsException : public virtual std::exception, public virtual boost::exception {};

/// Thrown when further data, or a second end mark, follows the end of the data.
class EndOfDataMarkedException : public IOStreamsException {};

} // namespace Nerix::Common::IO::IOExceptions
