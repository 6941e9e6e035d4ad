#pragma once

#include <boost/exception/exception.hpp>

#include <string>

/// For other programs of the package: neither program here attaches a support code.
///
/// Support codes tell a service centre where a failure came from: a chain joined by "-", outermost first,
/// kept in the errinfo_supportcode entry.

namespace Nerix::Common::Utils {

/// Sets target's chain to code, followed by "-" and source's chain when source has one.
void add_supportcode_context(boost::exception& target, const boost::exception& source,
                             const std::string& code);

/// Puts code in front of the exception's own chain.
void add_supportcode_context(boost::exception& exception, const std::string& code);

/// The exception's chain followed by those of the exceptions nested in it (boost::errinfo_nested_exception),
/// joined by "-"; empty when none has a code.
std::string get_combined_supportcode(const boost::exception& exception);

} // namespace Nerix::Common::Utils
