#include "Common/Base/EscapedText.h"

#include "Common/Base/Hexadecimal.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Nerix::Common {

namespace {

std::string escapeOf(char byte) {
    return "\\x" + hexadecimal(static_cast<unsigned char>(byte), 2);
}

/// Returns true if the character needs no escape, regardless of its neighbours.
bool isAlwaysPlain(char character) {
    return character >= ' ' && character <= '~' && character != '\\';
}

bool isC1(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0;
}

/// Returns true if text begins with the UTF-8 form of U+202A to U+202E or of U+2066 to U+2069.
bool beginsWithDirectionControl(std::string_view text) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    return text.size() >= 3 && byte(0) == 0xE2 &&
           ((byte(1) == 0x80 && byte(2) >= 0xAA && byte(2) <= 0xAE) ||
            (byte(1) == 0x81 && byte(2) >= 0xA6 && byte(2) <= 0xA9));
}

/// Escapes text as escaped() does, but keeps the character `kept`.
std::string escapedExcept(char kept, const std::string& text) {
    if (std::all_of(text.begin(), text.end(), isAlwaysPlain)) {
        return text; // nearly every text
    }
    constexpr std::string_view named = "\\\n\r\t";
    constexpr std::string_view letters = "\\nrt";
    std::string result;
    result.reserve(text.size());
    unsigned char lastPlain = 0; // the last byte, or 0 if it was escaped
    for (std::size_t index = 0; index != text.size(); ++index) {
        const char character = text[index];
        const auto byte = static_cast<unsigned char>(character);
        const unsigned char before = lastPlain;
        lastPlain = 0;
        if (beginsWithDirectionControl(std::string_view(text).substr(index))) {
            for (const char part : text.substr(index, 3)) {
                result += escapeOf(part);
            }
            index += 2;
        } else if (isC1(byte) && before == 0xC2) {
            result.pop_back(); // both bytes form one control character, so the first is escaped too
            result += escapeOf('\xC2');
            result += escapeOf(character);
        } else if (const std::size_t position = named.find(character);
                   position != std::string_view::npos && character != kept) {
            result += '\\';
            result += letters[position];
        } else if (byte < 0x20 || byte == 0x7F || (isC1(byte) && before < 0x80)) {
            result += escapeOf(character);
        } else {
            result += character;
            lastPlain = byte;
        }
    }
    return result;
}

/// Decodes the escape sequence or plain character at the start of text, which must not be empty. Returns the
/// character and the number of bytes decoded.
std::pair<char, std::size_t> decodeOne(std::string_view text) {
    constexpr std::string_view letters = "nrt\\";
    constexpr std::string_view named = "\n\r\t\\";
    if (text[0] == '\\' && text.size() > 1) {
        if (const std::size_t position = letters.find(text[1]); position != std::string_view::npos) {
            return {named[position], 2};
        }
        const auto byte = byteFromHexadecimal(text.substr(2));
        if (text[1] == 'x' && byte) {
            return {*byte, 4};
        }
    }
    return {text[0], 1};
}

} // namespace

std::string escaped(const std::string& text) {
    return escapedExcept('\0', text);
}

std::string unescaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const auto [plain, length] = decodeOne(text);
        result += plain;
        text.remove_prefix(length);
    }
    return result;
}

std::string withoutControls(const std::string& text) {
    return escapedExcept('\\', text);
}

} // namespace Nerix::Common
