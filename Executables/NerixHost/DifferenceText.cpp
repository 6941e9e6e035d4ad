#include "Executables/NerixHost/DifferenceText.h"

#include "Executables/NerixHost/QuotedName.h"

#include <algorithm>
#include <map>

namespace Nerix {

namespace {

using Kind = Difference::Kind;

constexpr Kind kinds[] = {Kind::changed, Kind::moved, Kind::added, Kind::removed};

std::string shownPath(const std::string& path) {
    return quotedName(plainPath(path));
}

std::string coloredWord(Kind kind) {
    constexpr const char* none = "\x1b[m";
    const char* const color = kind == Kind::removed ? "\x1b[31m"
                              : kind == Kind::added ? "\x1b[32m"
                              : kind == Kind::moved ? "\x1b[36m"
                                                    : "\x1b[33m";
    return color + std::string(wordOf(kind)) + none;
}

/// Returns the number with a comma before each group of three digits.
std::string grouped(std::uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t place = text.size(); place > 3;) {
        place -= 3;
        text.insert(place, ",");
    }
    return text;
}

std::string counted(std::uint64_t count, const char* one, const char* many) {
    return grouped(count) + ' ' + (count == 1 ? one : many);
}

std::string belowOf(const Difference& difference) {
    return difference.below == 0 ? "" : " and " + counted(difference.below, "entry", "entries") + " below";
}

/// Returns the directory of the first two levels that contains the entry.
std::string groupOf(const std::string& path) {
    const std::size_t last = path.rfind('/');
    const std::size_t second = path.find('/', 1);
    const std::size_t third = second == std::string::npos ? second : path.find('/', second + 1);
    const std::string directory = path.substr(0, std::min(third, last));
    return directory.empty() ? "/" : directory;
}

/// Returns what happened, in words that many differences can share.
std::string sharedTextOf(const Difference& difference) {
    if (difference.kind != Kind::changed) {
        return wordOf(difference.kind);
    }
    return difference.facts.empty() ? "value" : textOf(difference.facts);
}

std::string join(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : ", ") + text;
    }
    return joined;
}

} // namespace

const char* wordOf(Difference::Kind kind) {
    switch (kind) {
    case Kind::changed:
        return "changed";
    case Kind::moved:
        return "moved";
    case Kind::removed:
        return "removed";
    case Kind::added:
        return "added";
    }
    return "";
}

std::string plainPath(const std::string& path) {
    return path == "/" ? "." : path.substr(1);
}

std::string lineOf(const Difference& difference, bool isColored) {
    constexpr std::size_t width = 8; // of the longest word and a blank
    const std::string word = wordOf(difference.kind);
    std::string line = isColored ? coloredWord(difference.kind) : word;
    line.append(width - word.size(), ' ');
    line += shownPath(difference.path);
    if (difference.kind == Kind::moved) {
        line += " -> " + shownPath(difference.newPath);
    }
    const std::string facts = textOf(difference.facts);
    if (!facts.empty()) {
        line += ": " + facts;
    }
    return line + belowOf(difference);
}

std::string totalsOf(const ComparisonResult& result, const ComparisonRules& rules) {
    std::vector<std::string> parts;
    for (const Kind kind : kinds) {
        if (const std::uint64_t count = countOf(result, kind)) {
            parts.push_back(grouped(count) + ' ' + wordOf(kind));
        }
    }
    std::string text = counted(result.differences.size(), "difference", "differences") + " among " +
                       counted(result.entries, "entry", "entries");
    text += parts.empty() ? "" : ": " + join(parts);
    std::vector<std::string> skipped;
    for (const Fact fact : rules.ignored) {
        skipped.emplace_back(nameOf(fact));
    }
    text += skipped.empty() ? "" : "; ignored: " + join(skipped);
    skipped.clear();
    for (const PathPattern& pattern : rules.excluded) {
        skipped.push_back(quotedName(pattern.text()));
    }
    return text + (skipped.empty() ? "" : "; excluded: " + join(skipped));
}

std::string summaryOf(const ComparisonResult& result) {
    std::map<std::pair<std::string, std::string>, std::uint64_t> counts;
    for (const Difference& difference : result.differences) {
        counts[{sharedTextOf(difference), groupOf(difference.path)}] += 1 + difference.below;
    }
    std::vector<std::pair<std::uint64_t, std::string>> lines;
    lines.reserve(counts.size());
    for (const auto& [key, count] : counts) {
        lines.emplace_back(count, key.first + ": " + counted(count, "entry", "entries") + " below " +
                                      shownPath(key.second));
    }
    std::stable_sort(lines.begin(), lines.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    std::string text;
    for (const auto& [count, line] : lines) {
        text += line + '\n';
    }
    return text + "removed: " + counted(bytesOf(result, Kind::removed), "byte", "bytes") +
           ", added: " + counted(bytesOf(result, Kind::added), "byte", "bytes") + '\n';
}

} // namespace Nerix
