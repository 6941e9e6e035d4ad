#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/SystemLogLine.h"

#include "Common/Base/EscapedText.h"
#include "Common/Logging/Log.h"

#include <charconv>

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

bool isNumber(std::string_view text, std::uint64_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

} // namespace

std::optional<SystemLogLine> SystemLogLine::parse(std::string_view line) {
    constexpr std::string_view tag = NERIX_LOG_TAG " ";
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
    if (!level || rest.empty() || !isNumber(*number, parsed.number)) {
        return std::nullopt;
    }
    parsed.thread = *thread;
    parsed.text = Common::unescaped(rest.substr(1));
    return parsed;
}

} // namespace Nerix
