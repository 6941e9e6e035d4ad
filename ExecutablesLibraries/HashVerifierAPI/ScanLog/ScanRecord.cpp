#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanRecord.h"

namespace Nerix {

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

} // namespace Nerix
