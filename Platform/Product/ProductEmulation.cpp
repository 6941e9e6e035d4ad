#include "Platform/Product/IProductInfo.h"

#include "Common/Logging/Log.h"
#include "Platform/Product/EmulatedInfo.h"

#include <boost/filesystem/operations.hpp>
#include <boost/lexical_cast.hpp>
#include <boost/throw_exception.hpp>

#include <limits>
#include <typeinfo>

namespace Nerix::Platform {

namespace {

boost::optional<std::uint16_t> getNumber(const char* key) {
    const boost::optional<std::string> text = getEmulatedInfoValue(key);
    if (!text) {
        return boost::none;
    }
    // Via int: lexical_cast to an unsigned type accepts "-1" as 65535.
    const int number = boost::lexical_cast<int>(*text);
    if (number < 0 || number > std::numeric_limits<std::uint16_t>::max()) {
        BOOST_THROW_EXCEPTION(boost::bad_lexical_cast(typeid(std::string), typeid(std::uint16_t)));
    }
    return static_cast<std::uint16_t>(number);
}

} // namespace

void IProductInfo::setEmulatedModelString(const std::string& model) {
    setEmulatedInfoValue(EMULATED_MODEL_STRING_KEY, model);
}
boost::optional<std::string> IProductInfo::getEmulatedModelString() {
    return getEmulatedInfoValue(EMULATED_MODEL_STRING_KEY);
}
void IProductInfo::setEmulatedMainSoftwareVersionMajor(std::uint16_t major) {
    setEmulatedInfoValue(EMULATED_VERSION_MAJOR_KEY, std::to_string(major));
}
boost::optional<std::uint16_t> IProductInfo::getEmulatedMainSoftwareVersionMajor() {
    return getNumber(EMULATED_VERSION_MAJOR_KEY);
}
void IProductInfo::setEmulatedMainSoftwareVersionMinor(std::uint16_t minor) {
    setEmulatedInfoValue(EMULATED_VERSION_MINOR_KEY, std::to_string(minor));
}
boost::optional<std::uint16_t> IProductInfo::getEmulatedMainSoftwareVersionMinor() {
    return getNumber(EMULATED_VERSION_MINOR_KEY);
}

boost::optional<std::string> IProductInfo::getEmulatedVersionString() {
    const boost::optional<std::string> major = getEmulatedInfoValue(EMULATED_VERSION_MAJOR_KEY);
    if (!major) {
        NERIX_LOG_STREAM(WRN) << "Version Major NOT set";
        return boost::none;
    }
    const boost::optional<std::string> minor = getEmulatedInfoValue(EMULATED_VERSION_MINOR_KEY);
    if (!minor) {
        NERIX_LOG_STREAM(WRN) << "Version Minor NOT set";
        return boost::none;
    }
    return *major + "." + *minor;
}

void IProductInfo::setEmulatedMainSoftwareVersionDate(const std::string& date) {
    setEmulatedInfoValue(EMULATED_DATE_KEY, date);
}

boost::optional<std::string> IProductInfo::getEmulatedMainSoftwareVersionDate() {
    return getEmulatedInfoValue(EMULATED_DATE_KEY);
}

boost::optional<boost::filesystem::path> IProductInfo::getEmulatedPartitionTxtFilePath() {
    const boost::optional<std::string> path = getEmulatedInfoValue(EMULATED_PARTITION_TXT_FILE_PATH);
    return path ? boost::optional<boost::filesystem::path>(*path) : boost::none;
}

void IProductInfo::setEmulatedOTNZone(char zone) {
    setEmulatedInfoValue(EMULATED_OTN_ZONE, std::string(1, zone));
}

boost::optional<char> IProductInfo::getEmulatedOTNZone() {
    const boost::optional<std::string> zone = getEmulatedInfoValue(EMULATED_OTN_ZONE);
    return zone ? boost::optional<char>(boost::lexical_cast<char>(*zone)) : boost::none;
}

boost::optional<std::string> IProductInfo::getEmulatedSubmicomVersion() {
    return getEmulatedInfoValue(EMULATED_SUBMICOM_VERSION);
}
boost::optional<std::string> IProductInfo::getEmulatedQorlServiceID() {
    return getEmulatedInfoValue(EMULATED_QORL_SERVICE_ID);
}

void IProductInfo::removeEmulationInfo() {
    breakIfProductionAndNotDebug();
    boost::filesystem::remove(getEmulatedInfoPath());
}

} // namespace Nerix::Platform
