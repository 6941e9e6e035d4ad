#pragma once

#include <string>

namespace Nerix::Platform::Host {

/// text made safe for one line and for a terminal: line feed, carriage return, tab and backslash become \n,
/// \r, \t and \\, other control characters \xHH. Those are the bytes below 0x20, 0x7f, and C1: 0x80 to 0x9f,
/// after the 0xc2 of UTF-8 or where no byte of 0x80 or above is shown right before.
std::string escaped(const std::string& text);

} // namespace Nerix::Platform::Host
