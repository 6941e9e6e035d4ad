#include "HostPlatform/EscapedText.h"

#include <cstdio>
#include <string_view>
#include <utility>

namespace Nerix::Platform::Host {

namespace {

void appendHexadecimal(std::string& result, unsigned char byte) {
    char code[5];
    std::snprintf(code, sizeof code, "\\x%02x", byte);
    result += code;
}

bool isC1(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0;
}

} // namespace

std::string escaped(const std::string& text) {
    constexpr std::string_view named = "\\\n\r\t";
    constexpr std::string_view letters = "\\nrt";
    std::string result;
    result.reserve(text.size());
    unsigned char shown = 0; // the byte before, if it was not escaped
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const unsigned char before = std::exchange(shown, 0);
        if (isC1(byte) && before == 0xC2) {
            result.pop_back();
            appendHexadecimal(result, before);
            appendHexadecimal(result, byte);
        } else if (const std::size_t place = named.find(character); place != std::string_view::npos) {
            (result += '\\') += letters[place];
        } else if (byte < 0x20 || byte == 0x7F || (isC1(byte) && before < 0x80)) {
            appendHexadecimal(result, byte);
        } else {
            result += character;
            shown = byte;
        }
    }
    return result;
}

} // namespace Nerix::Platform::Host
