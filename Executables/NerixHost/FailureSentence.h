#pragma once

#include <exception>
#include <string>

namespace Nerix {

/// One sentence for people on why a scan failed: what could not be done with which entry, and the system's
/// reason (cannot read "/x/y": Permission denied).
std::string failureSentence(const std::exception_ptr& failure);

} // namespace Nerix
