#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanRecord.h"

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

} // namespace

std::string hexadecimal16(std::uint64_t value) {
    std::string text;
    for (unsigned int shift = 64; shift != 0;) {
        shift -= 4;
        text += "0123456789abcdef"[value >> shift & 0xFU];
    }
    return text;
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

std::string recordDetails(const struct stat& status) {
    std::string details = " ";
    for (const std::string& fact :
         {std::string(kindOf(status.st_mode)), std::to_string(status.st_uid), std::to_string(status.st_gid),
          std::to_string(status.st_nlink), octal4(status.st_mode)}) {
        details += fact + ' ';
    }
    return details + std::to_string(status.st_size);
}

} // namespace Nerix
