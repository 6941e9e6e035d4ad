#pragma once

#include <string>

namespace Nerix {

/// Formats a path for display: in double quotes, on one line, and without anything that controls a terminal.
/// Backslash, double quote, line feed, carriage return and tab become \\, \", \n, \r and \t, other characters
/// \xHH, see EscapedText.h, so that Python and a shell's $'…' read it back.
std::string quotedName(const std::string& path);

} // namespace Nerix
