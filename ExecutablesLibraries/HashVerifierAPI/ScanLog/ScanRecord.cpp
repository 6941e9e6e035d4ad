#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanRecord.h"

namespace Nerix {

namespace {

void appendHexadecimal16(std::string& text, std::uint64_t value) {
    for (unsigned int shift = 64; shift != 0;) {
        shift -= 4;
        text += "0123456789abcdef"[value >> shift & 0xFU];
    }
}

} // namespace

std::string hexadecimal16(std::uint64_t value) {
    std::string text;
    appendHexadecimal16(text, value);
    return text;
}

std::string scanRecord(std::uint64_t value, const std::string& path) {
    std::string record;
    record.reserve(16 + path.size() + 3);
    appendHexadecimal16(record, value);
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

} // namespace Nerix
