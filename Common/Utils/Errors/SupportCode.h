#pragma once

#include <boost/exception/exception.hpp>

#include <string>

/// Only other programs of the package attach support codes; the two programs here do not.
///
/// Support codes show a service centre where a failure came from. The errinfo_supportcode entry contains a
/// chain of them, joined by "-", outermost first.

namespace Nerix::Common::Utils {

/// Sets the chain of target to code, followed by "-" and the chain of source if source has one.
void add_supportcode_context(boost::exception& target, const boost::exception& source,
                             const std::string& code);

/// Puts code in front of the exception's chain.
void add_supportcode_context(boost::exception& exception, const std::string& code);

/// Returns the exception's chain followed by those of the exceptions nested in it
/// (boost::errinfo_nested_exception), joined by "-". Returns an empty string if none has a code.
std::string get_combined_supportcode(const boost::exception& exception);

} // namespace Nerix::Common::Utils
