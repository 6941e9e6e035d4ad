#pragma once

#include <string>
#include <string_view>

namespace Nerix::Common {

/// Escapes text so that it fits on one line and cannot control a terminal: line feed, carriage return, tab
/// and backslash become \n, \r, \t and \\, each byte of another control character \xHH. Control characters
/// are bytes below 0x20, 0x7f, C1 (0x80 to 0x9f) when it follows 0xc2 or an ASCII or escaped byte, and those
/// that change the direction of text, U+202A to U+202E and U+2066 to U+2069.
std::string escaped(const std::string& text);

/// Returns the text that escaped() made into this one.
std::string unescaped(std::string_view text);

/// The same as escaped() with backslashes as they are: for a message that holds escaped texts and others.
std::string withoutControls(const std::string& text);

} // namespace Nerix::Common
