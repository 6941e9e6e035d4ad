#pragma once

#include <cstdint>
#include <string>

namespace Nerix {

/// One line of the scan log, without its newline: the value in 16 lower-case hexadecimal digits, a blank, and
/// the path in double quotes, with '&' in front of every double quote and '&' inside.
std::string scanRecord(std::uint64_t value, const std::string& path);

/// value in lower-case hexadecimal, 16 digits with leading zeros.
std::string hexadecimal16(std::uint64_t value);

} // namespace Nerix
