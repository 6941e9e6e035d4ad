#pragma once

#include <boost/exception/exception.hpp>

#include <exception>

namespace Nerix::Common::IO::IOExceptions {

/// Reports that a data path was misused.
class IOStreamsException : public virtual std::exception, public virtual boost::exception {};

/// Reports data or a second end mark after the end of the data.
class EndOfDataMarkedException : public IOStreamsException {};

} // namespace Nerix::Common::IO::IOExceptions
