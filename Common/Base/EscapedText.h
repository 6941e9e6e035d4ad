#pragma once

#include <string>
#include <string_view>

namespace Nerix::Common {

/// Escapes text so that it fits on one line and cannot control a terminal. Line feed, carriage return, tab
/// and backslash become \n, \r, \t and \\. Each byte of any other control character becomes \xHH. Control
/// characters are:
///
/// - bytes below 0x20, and 0x7f
/// - C1 bytes (0x80 to 0x9f) at the beginning of the text, after an ASCII byte or after an escaped byte
/// - the UTF-8 forms of U+0080 to U+009F (0xc2 and a C1 byte)
/// - the UTF-8 forms of U+202A to U+202E and U+2066 to U+2069, which change the direction of text
std::string escaped(const std::string& text);

/// Reverses escaped(). Keeps each backslash that does not begin an escape sequence.
std::string unescaped(std::string_view text);

/// Escapes text as escaped() does, but keeps backslashes; for a message that contains escaped text.
std::string withoutControls(const std::string& text);

} // namespace Nerix::Common
