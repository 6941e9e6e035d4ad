#pragma once

#include <exception>
#include <string>

namespace Nerix {

/// Returns a sentence that explains why a scan failed, such as: cannot read "/x/y": Permission denied.
std::string failureSentence(const std::exception_ptr& failure);

} // namespace Nerix
