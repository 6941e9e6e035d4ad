#include "NerixCommon/NerixCommonUtils.h"

#include "Common/IO/CRCSink.h"
#include "Common/Logging/Log.h"
#include "Common/Utils/Encoding.h"
#include "Common/Utils/Errors/Assert.h"
#include "Common/Utils/Errors/RethrowExceptionStream.h"

#include <boost/exception/diagnostic_information.hpp>
#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <boost/throw_exception.hpp>

#include <charconv>
#include <sstream>
#include <typeinfo>

namespace Nerix::NerixCommon {

namespace {

/// Parses text like boost::lexical_cast<int> in the classic locale. In other locales, lexical_cast also
/// accepts digit separators.
int strictInt(const std::string& text) {
    std::size_t begin = 0;
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        begin = 1;
    }
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [parsed, error] = std::from_chars(text.data() + begin, end, number);
    if (error != std::errc() || parsed != end) {
        BOOST_THROW_EXCEPTION(boost::bad_lexical_cast(typeid(std::string), typeid(int)));
    }
    return number;
}

} // namespace

std::string NerixCommonUtils::upgradeTypeToString(UpgradeType type) {
    switch (type) {
    case UpgradeType::OTA:
        return "OTA";
    case UpgradeType::OTN:
        return "OTN";
    case UpgradeType::USB:
        return "USB";
    }
    NerixAssert(false);
    return "";
}

std::string NerixCommonUtils::getTransactionIdForUpgrade(const std::vector<unsigned char>& bytes) {
    Common::IO::CRC32Sink sink;
    sink.writeChunk(bytes.data(), bytes.size());
    sink.markEndOfData();
    const std::uint32_t checksum = sink.checksum();
    const unsigned char leastFirst[] = {
        static_cast<unsigned char>(checksum), static_cast<unsigned char>(checksum >> 8U),
        static_cast<unsigned char>(checksum >> 16U), static_cast<unsigned char>(checksum >> 24U)};
    return Common::Utils::Encoding::binToHex(leastFirst, sizeof leastFirst);
}

void NerixCommonUtils::parseVersion(const std::string& text, int& major, int& minor) {
    try {
        const std::size_t dot = text.find('.');
        major = strictInt(text.substr(0, dot));
        minor = dot == std::string::npos ? 0 : strictInt(text.substr(dot + 1));
    } catch (...) {
        NERIX_RETHROW_WITH_CONTEXT("");
    }
}

std::string NerixCommonUtils::versionStringForUI(const std::string& text) {
    try {
        int major = 0;
        int minor = 0;
        parseVersion(text, major, minor);
        std::ostringstream shown;
        shown << major;
        return shown.str();
    } catch (...) {
        const std::string diagnostic = boost::current_exception_diagnostic_information(true);
        NERIX_LOG(FTL, "Exception caught in versionStringForUI. Ignoring: %s", diagnostic.c_str());
        return text;
    }
}

} // namespace Nerix::NerixCommon
