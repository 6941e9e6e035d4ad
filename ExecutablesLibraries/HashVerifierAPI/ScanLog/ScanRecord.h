#pragma once

#include <cstdint>
#include <string>

namespace Nerix {

/// Returns a record without its line feed: the value in 16 lower-case hexadecimal digits, a space, and the
/// path in double quotes, with '&' before each double quote and '&' in the path.
std::string scanRecord(std::uint64_t value, const std::string& path);

/// Returns the record as it is written to the system log. Logging splits a message of more than 768 bytes at
/// its line feeds and drops them. In a record of more than 736 bytes, each line feed is therefore written as
/// "&n". No other byte is written like that.
std::string loggedScanRecord(std::uint64_t value, const std::string& path);

/// Returns value in lower-case hexadecimal, 16 digits with leading zeros.
std::string hexadecimal16(std::uint64_t value);

} // namespace Nerix
