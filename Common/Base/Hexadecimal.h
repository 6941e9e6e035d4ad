#pragma once

#include <cstdint>
#include <string>

namespace Nerix::Common {

/// Returns the lowest `digits` digits of value in lower-case hexadecimal, with leading zeros.
inline std::string hexadecimal(std::uint64_t value, unsigned int digits) {
    std::string text(digits, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit) {
        *digit = "0123456789abcdef"[value & 0xFU];
        value >>= 4U;
    }
    return text;
}

} // namespace Nerix::Common
