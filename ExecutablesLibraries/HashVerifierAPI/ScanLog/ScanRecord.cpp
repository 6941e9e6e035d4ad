#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanRecord.h"

#include "Common/Base/Hexadecimal.h"
#include "Common/Logging/LoggingClass.h"

#include <algorithm>
#include <charconv>

#include <sys/stat.h>

namespace Nerix {

namespace {

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

/// Takes a blank and the word after it off the front of text. Empty when there is none.
std::string_view takeFact(std::string_view& text) {
    if (text.empty() || text.front() != ' ') {
        return {};
    }
    const std::size_t end = std::min(text.find(' ', 1), text.size());
    const std::string_view fact = text.substr(1, end - 1);
    text.remove_prefix(end);
    return fact;
}

/// Returns true if text is a number of that type as std::to_string writes it.
template <class Number>
bool isDecimal(std::string_view text) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() &&
           (text.front() != '0' || text.size() == 1);
}

bool isMode(std::string_view text) {
    return text.size() == 4 && text.find_first_not_of("01234567") == std::string_view::npos;
}

} // namespace

std::string hexadecimal16(std::uint64_t value) {
    return Common::hexadecimal(value, 16);
}

std::string scanRecord(std::uint64_t value, const std::string& path) {
    std::string record = hexadecimal16(value);
    record.reserve(record.size() + path.size() + 3);
    record += " \"";
    for (const char character : path) {
        if (character == '"' || character == '&') {
            record += '&';
        }
        record += character;
    }
    record += '"';
    return record;
}

std::string loggedScanRecord(std::uint64_t value, const std::string& path) {
    constexpr std::size_t sourcePosition =
        32; // more than the file's name and line that logging puts in front
    std::string record = scanRecord(value, path);
    if (record.size() + sourcePosition > Common::Logging::LoggingClass::maxMessageLength) {
        for (std::size_t at = record.find('\n'); at != std::string::npos; at = record.find('\n', at)) {
            record.replace(at, 1, "&n");
        }
    }
    return record;
}

std::string recordDetails(const struct stat& status) {
    std::string details = " ";
    for (const std::string& fact :
         {std::string(kindOf(status.st_mode)), std::to_string(status.st_uid), std::to_string(status.st_gid),
          std::to_string(status.st_nlink), octal4(status.st_mode)}) {
        details += fact + ' ';
    }
    return details + std::to_string(status.st_size);
}

bool isRecordDetails(std::string_view text) {
    const std::string_view kind = takeFact(text);
    return (kind == "file" || kind == "directory" || kind == "link") &&
           isDecimal<std::uint32_t>(takeFact(text)) && isDecimal<std::uint32_t>(takeFact(text)) &&
           isDecimal<std::uint64_t>(takeFact(text)) && isMode(takeFact(text)) &&
           isDecimal<std::uint64_t>(takeFact(text)) && text.empty();
}

} // namespace Nerix
