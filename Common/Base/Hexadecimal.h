#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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

/// Returns the byte that the first two characters of text represent in hexadecimal, or nullopt.
inline std::optional<char> byteFromHexadecimal(std::string_view text) {
    constexpr std::size_t digits = 2;
    unsigned char byte = 0;
    const std::string_view pair = text.substr(0, digits);
    const char* const end = pair.data() + pair.size();
    const bool isByte = pair.size() == digits && std::from_chars(pair.data(), end, byte, 16).ptr == end;
    return isByte ? std::optional<char>(static_cast<char>(byte)) : std::nullopt;
}

} // namespace Nerix::Common
