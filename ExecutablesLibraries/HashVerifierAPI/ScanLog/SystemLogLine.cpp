#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/SystemLogLine.h"

#include <charconv>

namespace Nerix {

namespace {

/// The text between '[' and ']' at the front of rest, which moves behind them.
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

/// The text of which the host's log wrote what is made for one line: \n, \r, \t, \\ and \xHH.
std::string unescaped(std::string_view text) {
    constexpr std::string_view letters = "nrt\\";
    constexpr std::string_view named = "\n\r\t\\";
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        unsigned char byte = 0;
        if (text[at] != '\\' || at + 1 == text.size()) {
            result += text[at];
        } else if (const std::size_t place = letters.find(text[at + 1]); place != std::string_view::npos) {
            result += named[place];
            ++at;
        } else if (text[at + 1] == 'x' && at + 3 < text.size() &&
                   isNumber(text.substr(at + 2, 2), byte, 16)) {
            result += static_cast<char>(byte);
            at += 3;
        } else {
            result += text[at];
        }
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
