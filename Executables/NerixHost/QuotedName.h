#pragma once

#include <string>

namespace Nerix {

/// Formats a path for display: in double quotes, on one line, and without anything that controls a terminal.
/// Backslash, double quote, line feed, carriage return and tab become \\, \", \n, \r and \t; bytes of other
/// control characters become \xHH (see EscapedText.h). Python and a shell's $'…' can decode the result.
std::string quotedName(const std::string& path);

} // namespace Nerix
