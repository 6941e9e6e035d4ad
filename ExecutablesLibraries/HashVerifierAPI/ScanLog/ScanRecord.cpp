#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanRecord.h"

#include "Common/Base/Hexadecimal.h"
#include "Common/Logging/LoggingClass.h"

namespace Nerix {

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
    constexpr std::size_t sourcePosition = 32; // longer than the file name and line that logging prefixes
    std::string record = scanRecord(value, path);
    if (record.size() + sourcePosition > Common::Logging::LoggingClass::maxMessageLength) {
        for (std::size_t at = record.find('\n'); at != std::string::npos; at = record.find('\n', at)) {
            record.replace(at, 1, "&n");
        }
    }
    return record;
}

} // namespace Nerix
