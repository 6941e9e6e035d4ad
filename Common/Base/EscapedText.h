#pragma once

#include <string>
#include <string_view>

namespace Nerix::Common {

/// Escapes text so that it fits on one line and cannot control a terminal: line feed, carriage return, tab
/// and backslash become \n, \r, \t and \\, each byte of another control character \xHH. Control characters
/// are bytes below 0x20, 0x7f, C1 (0x80 to 0x9f) when it follows 0xc2 or an ASCII or escaped byte, and those
/// that change the direction of text, U+202A to U+202E and U+2066 to U+2069.
std::string escaped(const std::string& text);

/// Reverses escaped().
std::string unescaped(std::string_view text);

/// Escapes like escaped(), but leaves backslashes unchanged, for a message that already contains escaped
/// text.
std::string withoutControls(const std::string& text);

} // namespace Nerix::Common
