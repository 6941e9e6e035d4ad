#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/RecordDetails.h"

#include "Common/Base/Hexadecimal.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include <sys/stat.h>

namespace Nerix {

namespace {

constexpr std::size_t valueLength = 16;

const char* kindOf(mode_t mode) {
    switch (mode & S_IFMT) {
    case S_IFREG:
        return "file";
    case S_IFDIR:
        return "directory";
    case S_IFLNK:
        return "link";
    default:
        return "other"; // leaves no record
    }
}

std::string octal4(mode_t mode) {
    std::string text;
    for (unsigned int shift = 12; shift != 0;) {
        shift -= 3;
        text += static_cast<char>('0' + (mode >> shift & 7U));
    }
    return text;
}

/// Removes a space and the word after it from the front of text. Returns an empty text if there is none.
std::string takeWord(std::string_view& text) {
    if (text.empty() || text.front() != ' ') {
        return {};
    }
    const std::size_t end = std::min(text.find(' ', 1), text.size());
    std::string word(text.substr(1, end - 1));
    text.remove_prefix(end);
    return word;
}

/// Returns true if text is a value of that type as std::to_string writes it.
template <class Number>
bool isDecimal(const std::string& text) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() &&
           (text.front() != '0' || text.size() == 1);
}

bool isMode(const std::string& text) {
    return text.size() == 4 && text.find_first_not_of("01234567") == std::string::npos;
}

std::optional<std::uint64_t> valueIn(const std::string& text) {
    std::uint64_t value = 0;
    const char* const end = text.data() + text.size();
    const bool isValue = text.size() == valueLength && text.find_first_of("ABCDEF") == std::string::npos &&
                         std::from_chars(text.data(), end, value, 16).ptr == end;
    return isValue ? std::optional<std::uint64_t>(value) : std::nullopt;
}

bool takeSpace(std::string_view& text) {
    if (text.empty() || text.front() != ' ') {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

bool takeStatus(std::string_view& text, RecordDetails& details) {
    for (std::string* const word :
         {&details.kind, &details.owner, &details.group, &details.links, &details.mode, &details.size}) {
        *word = takeWord(text);
    }
    return (details.kind == "file" || details.kind == "directory" || details.kind == "link") &&
           isDecimal<std::uint32_t>(details.owner) && isDecimal<std::uint32_t>(details.group) &&
           isDecimal<std::uint64_t>(details.links) && isMode(details.mode) &&
           isDecimal<std::uint64_t>(details.size);
}

bool takeContentOrTarget(std::string_view& text, RecordDetails& details) {
    if (details.kind == "file") {
        const std::optional<std::uint64_t> content = valueIn(takeWord(text));
        details.facts.content = content.value_or(0);
        return content.has_value();
    }
    if (details.kind == "link") {
        std::optional<std::string> target = takeSpace(text) ? takeQuotedFact(text) : std::nullopt;
        if (target) {
            details.facts.target = std::move(*target);
        }
        return target.has_value();
    }
    return true;
}

bool takeAttributes(std::string_view& text, RecordDetails& details) {
    while (takeSpace(text)) {
        std::optional<std::string> name = takeQuotedFact(text);
        const std::optional<std::uint64_t> value = valueIn(takeWord(text));
        std::vector<EntryFacts::Attribute>& attributes = details.facts.attributes;
        if (!name || !value || (!attributes.empty() && attributes.back().name >= *name)) {
            return false;
        }
        attributes.push_back({std::move(*name), *value});
    }
    return true;
}

} // namespace

std::string recordDetails(const struct stat& status, const EntryFacts* facts) {
    const std::string kind = kindOf(status.st_mode);
    std::string details;
    for (const std::string& word :
         {kind, std::to_string(status.st_uid), std::to_string(status.st_gid), std::to_string(status.st_nlink),
          octal4(status.st_mode), std::to_string(status.st_size)}) {
        details.append(" ").append(word);
    }
    if (facts == nullptr) {
        return details;
    }
    if (kind == "file") {
        details.append(" ").append(Common::hexadecimal(facts->content, valueLength));
    } else if (kind == "link") {
        details.append(" ").append(quotedFact(facts->target));
    }
    for (const EntryFacts::Attribute& attribute : facts->attributes) {
        details.append(" ").append(quotedFact(attribute.name));
        details.append(" ").append(Common::hexadecimal(attribute.value, valueLength));
    }
    return details;
}

std::optional<RecordDetails> parseRecordDetails(std::string_view text, bool hasFacts) {
    RecordDetails details;
    const bool isValid =
        takeStatus(text, details) &&
        (!hasFacts || (takeContentOrTarget(text, details) && takeAttributes(text, details))) && text.empty();
    return isValid ? std::optional<RecordDetails>(std::move(details)) : std::nullopt;
}

std::string quotedFact(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '\n') {
            quoted += "&n";
            continue;
        }
        if (character == '"' || character == '&') {
            quoted += '&';
        }
        quoted += character;
    }
    return quoted += '"';
}

std::optional<std::string> takeQuotedFact(std::string_view& text) {
    std::string plain;
    if (text.empty() || text.front() != '"') {
        return std::nullopt;
    }
    for (std::size_t index = 1; index < text.size(); ++index) {
        if (text[index] == '"') {
            text.remove_prefix(index + 1);
            return plain;
        }
        if (text[index] != '&') {
            plain += text[index];
            continue;
        }
        ++index;
        if (index == text.size() || std::string_view("\"&n").find(text[index]) == std::string_view::npos) {
            return std::nullopt;
        }
        plain += text[index] == 'n' ? '\n' : text[index];
    }
    return std::nullopt;
}

} // namespace Nerix
