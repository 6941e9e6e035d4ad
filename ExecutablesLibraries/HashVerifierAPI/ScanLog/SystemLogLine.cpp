#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/SystemLogLine.h"

#include <charconv>
#include <utility>

namespace Nerix {

namespace {

/// Removes a leading "[text]" from rest and returns text.
std::optional<std::string_view> field(std::string_view& rest) {
    const std::size_t end = rest.find(']');
    if (rest.empty() || rest.front() != '[' || end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view text = rest.substr(1, end - 1);
    rest.remove_prefix(end + 1);
    return text;
}

template <class Number>
bool isNumber(std::string_view text, Number& number, int base) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return error == std::errc() && end == text.data() + text.size();
}

/// Decodes the escape sequence, or plain character, at the start of text; returns the character and the
/// number of bytes consumed.
std::pair<char, std::size_t> decodeOne(std::string_view text) {
    constexpr std::string_view letters = "nrt\\";
    constexpr std::string_view named = "\n\r\t\\";
    unsigned char byte = 0;
    if (text[0] == '\\' && text.size() > 1) {
        if (const std::size_t place = letters.find(text[1]); place != std::string_view::npos) {
            return {named[place], 2};
        }
        if (text[1] == 'x' && text.size() > 3 && isNumber(text.substr(2, 2), byte, 16)) {
            return {static_cast<char>(byte), 4};
        }
    }
    return {text[0], 1};
}

/// What the host's log escaped to make a text one line: \n, \r, \t, \\ and \xHH.
std::string unescaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const auto [plain, length] = decodeOne(text);
        result += plain;
        text.remove_prefix(length);
    }
    return result;
}

} // namespace

std::optional<SystemLogLine> SystemLogLine::parse(std::string_view line) {
    constexpr std::string_view tag = "org.corvan.tv.nerix.NERIX ";
    const std::size_t begin = line.find(tag);
    if (begin == std::string_view::npos) {
        return std::nullopt;
    }
    std::string_view rest = line.substr(begin + tag.size());
    const auto process = field(rest);
    const auto thread = process ? field(rest) : std::nullopt;
    const auto number = thread ? field(rest) : std::nullopt;
    const auto level = number ? field(rest) : std::nullopt;
    SystemLogLine parsed{};
    if (!level || rest.empty() || !isNumber(*number, parsed.number, 10)) {
        return std::nullopt;
    }
    parsed.thread = *thread;
    parsed.text = unescaped(rest.substr(1));
    return parsed;
}

} // namespace Nerix
