#pragma once

#include <boost/exception/exception.hpp>

#include <exception>

namespace Nerix::Common::IO::IOExceptions {

/// Misuse of a data path.
class IOStreamsException : public virtual std::exception, public virtual boost::exception {};

/// Data or a second end mark after the end of the data.
class EndOfDataMarkedException : public IOStreamsException {};

} // namespace Nerix::Common::IO::IOExceptions
