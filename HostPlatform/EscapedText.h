#pragma once

#include <string>

namespace Nerix::Platform::Host {

/// text as it can stand in one line and on a terminal: line feed, carriage return and tab as \n, \r and \t,
/// a backslash as \\, and as \xHH every other control byte (below 0x20, 0x7f) and C1 control character: the
/// bytes 0x80 to 0x9f, with the 0xc2 before them that UTF-8 gives them, or where they follow no byte of
/// 0x80 or above.
std::string escaped(const std::string& text);

} // namespace Nerix::Platform::Host
