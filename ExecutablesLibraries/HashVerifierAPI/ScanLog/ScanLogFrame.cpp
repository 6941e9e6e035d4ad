#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogFrame.h"

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/RecordDetails.h"

#include <charconv>

namespace Nerix {

namespace {

constexpr std::string_view begin = "NerixScanLog ";
constexpr std::string_view beginOfVersion = "NerixScanLog 2 ";
constexpr std::string_view end = "complete ";

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

/// Returns the number if the whole text is one, otherwise nullopt.
template <class Number>
std::optional<Number> numberIn(std::string_view text) {
    Number number = 0;
    const auto [last, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && last == text.data() + text.size() ? std::optional<Number>(number)
                                                                     : std::nullopt;
}

} // namespace

std::string ScanLogHeader::text() const {
    return std::string(beginOfVersion) + method + ' ' + std::to_string(user) + ' ' + quotedFact(root);
}

std::optional<ScanLogHeader> ScanLogHeader::parse(std::string_view line) {
    if (!startsWith(line, beginOfVersion)) {
        return std::nullopt;
    }
    line.remove_prefix(beginOfVersion.size());
    const std::size_t methodEnd = line.find(' ');
    const std::size_t userEnd =
        methodEnd == std::string_view::npos ? methodEnd : line.find(' ', methodEnd + 1);
    if (userEnd == std::string_view::npos) {
        return std::nullopt;
    }
    const auto user = numberIn<std::uint32_t>(line.substr(methodEnd + 1, userEnd - methodEnd - 1));
    std::string_view rest = line.substr(userEnd + 1);
    const std::optional<std::string> root = takeQuotedFact(rest);
    if (!user || !root || !rest.empty()) {
        return std::nullopt;
    }
    return ScanLogHeader{std::string(line.substr(0, methodEnd)), *user, *root};
}

bool ScanLogHeader::isHeader(std::string_view line) {
    return startsWith(line, begin);
}

std::string scanLogEnd(std::uint64_t entries) {
    return std::string(end) + std::to_string(entries);
}

std::optional<std::uint64_t> parseScanLogEnd(std::string_view line) {
    return startsWith(line, end) ? numberIn<std::uint64_t>(line.substr(end.size())) : std::nullopt;
}

} // namespace Nerix
