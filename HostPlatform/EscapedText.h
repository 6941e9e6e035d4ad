#pragma once

#include <string>

namespace Nerix::Platform::Host {

/// Returns text made safe for one line and for a terminal: line feed, carriage return, tab and backslash become \n,
/// \r, \t and \\, each byte of another control character \xHH. Those are the bytes below 0x20, 0x7f, and C1: 0x80 to 0x9f,
/// after the 0xc2 of UTF-8 or where no byte of 0x80 or above is shown right before; and the characters that change the
/// direction of what follows, U+202A to U+202E and U+2066 to U+2069.
std::string escaped(const std::string& text);

/// The same with backslashes as they are: for a message that holds escaped texts and others.
std::string withoutControls(const std::string& text);

} // namespace Nerix::Platform::Host
