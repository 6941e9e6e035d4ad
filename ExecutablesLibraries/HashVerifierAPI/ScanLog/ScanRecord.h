#pragma once

#include <cstdint>
#include <string>

struct stat;

namespace Nerix {

/// One line of the scan log, without its newline: the value in 16 lower-case hexadecimal digits, a blank, and
/// the path in double quotes, with '&' in front of every double quote and '&' inside.
std::string scanRecord(std::uint64_t value, const std::string& path);

/// What stands behind the record in a log with details: a blank and the entry's kind (file, directory or
/// link), owner, group, number of links, mode in four octal digits and size in bytes, blanks between them.
std::string recordDetails(const struct stat& status);

/// value in lower-case hexadecimal, 16 digits with leading zeros.
std::string hexadecimal16(std::uint64_t value);

} // namespace Nerix
