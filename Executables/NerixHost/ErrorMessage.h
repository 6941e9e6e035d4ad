#pragma once

#include <string>

namespace Nerix {

/// Prints "NerixHost: " and the message, a line, on standard error. Parts of the message may come from
/// anywhere: whatever controls a terminal is written as in QuotedName.h.
void printError(const std::string& message);

} // namespace Nerix
