#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanRecord.h"

namespace Nerix {

std::string hexadecimal16(std::uint64_t value) {
    std::string text(16, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit) {
        *digit = "0123456789abcdef"[value & 0xFU];
        value >>= 4U;
    }
    return text;
}

std::string scanRecord(std::uint64_t value, const std::string& path) {
    std::string record = hexadecimal16(value);
    record.reserve(record.size() + path.size() + 3);
    record += " \"";
    std::size_t plain = 0;
    for (std::size_t at = 0; (at = path.find_first_of("\"&", at)) != std::string::npos; ++at) {
        record.append(path, plain, at - plain);
        record += '&';
        plain = at;
    }
    record.append(path, plain);
    record += '"';
    return record;
}

} // namespace Nerix
