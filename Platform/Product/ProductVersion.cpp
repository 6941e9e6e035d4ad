#include "Platform/Product/IProductInfo.h"

#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Errors.h"
#include "NerixCommon/NerixCommonUtils.h"
#include "Platform/Product/SystemInformation.h"

namespace Nerix::Platform {

using Common::Utils::errinfo_description;
using Common::Utils::errinfo_stream;
using Common::Utils::errinfo_string;
using Common::Utils::GenericException;

namespace {

struct ModelAndVersion {
    std::string model;
    std::uint16_t major = 0;
    std::uint16_t minor = 0;
};

ModelAndVersion parsedModelAndVersion() {
    ModelAndVersion parsed;
    getParsedModelAndVersion(parsed.model, parsed.major, parsed.minor);
    return parsed;
}

/// Reads a software fact from the system-information service.
std::string readVersion(SystemInformation::Key key, const boost::source_location& where) {
    return SystemInformation::valueOrThrow(SystemInformation::readString(key),
                                           "Unable to read SW version from system-info", where);
}

/// Returns the position of the last dash. If there is none, logs and throws GenericException; both name
/// `caller`.
std::size_t lastDash(const std::string& version, const std::string& caller) {
    const std::size_t dash = version.rfind('-');
    if (dash == std::string::npos) {
        const std::string failure = caller + ": Wrong string format - lack of dash";
        NERIX_LOG(ERR, "%s: %s", failure.c_str(), version.c_str());
        BOOST_THROW_EXCEPTION(GenericException() << errinfo_description(failure) << errinfo_string(version));
    }
    return dash;
}

} // namespace

std::string getSWVersionString() {
    return readVersion(IProductInfo::getDeviceType() == ZEB_PRODUCT ? SystemInformation::ZEB_SOFTWARE_VERSION
                                                                    : SystemInformation::TV_SOFTWARE_VERSION,
                       BOOST_CURRENT_LOCATION);
}

void getParsedModelAndVersion(std::string& model, std::uint16_t& major, std::uint16_t& minor) {
    const std::string text = getSWVersionString();
    NERIX_LOG_STREAM(DBG) << "getParsedModelAndVersion got version string '" << text << "'";
    const std::size_t dash = lastDash(text, "getParsedModelAndVersion");
    model = text.substr(0, dash);
    const std::string version = text.substr(dash + 1);
    NERIX_LOG_STREAM(DBG) << "version string: " << version;
    int wholeMajor = 0;
    int wholeMinor = 0;
    NerixCommon::NerixCommonUtils::parseVersion(version, wholeMajor, wholeMinor);
    major = static_cast<std::uint16_t>(wholeMajor);
    minor = static_cast<std::uint16_t>(wholeMinor);
    NERIX_LOG_STREAM(DBG) << "version:" << major << "." << minor;
}

std::string IProductInfo::getModelString() {
    std::string model = parsedModelAndVersion().model;
    NERIX_LOG(INF, "Model string: %s.", model.c_str());
    return model;
}

std::uint16_t IProductInfo::getMainSoftwareVersionMajor() {
    const std::uint16_t major = parsedModelAndVersion().major;
    NERIX_LOG(INF, "MAJOR SW VERSION: %d", major);
    return major;
}

std::uint16_t IProductInfo::getMainSoftwareVersionMinor() {
    const std::uint16_t minor = parsedModelAndVersion().minor;
    NERIX_LOG(INF, "MINOR SW VERSION: %d", minor);
    return minor;
}

std::string IProductInfo::getVersionString() {
    const std::string text = getSWVersionString();
    std::string version = text.substr(lastDash(text, "getVersionString") + 1);
    NERIX_LOG(INF, "Version string: %s.", version.c_str());
    return version;
}

std::string IProductInfo::getMainSoftwareVersionDate() {
    throwIfUninitialized();
    return readVersion(SystemInformation::SOFTWARE_DATE, BOOST_CURRENT_LOCATION);
}

std::string IProductInfo::getSubmicomVersion() {
    throwIfUninitialized();
    return readVersion(SystemInformation::SUBMICOM_VERSION, BOOST_CURRENT_LOCATION);
}

boost::filesystem::path IProductInfo::getPartitionTxtFilePath() {
    throwIfUninitialized();
    const std::string path = SystemInformation::valueOrThrow(
        SystemInformation::readString(SystemInformation::PARTITION_FILE_PATH),
        "Unable to read partition file path from system-info", BOOST_CURRENT_LOCATION);
    NERIX_LOG(INF, "Partition.txt file path is: %s", path.c_str());
    return path;
}

namespace {

/// Throws UnproperProductException on a Zeb box.
void throwIfZeb() {
    if (IProductInfo::getDeviceType() == ZEB_PRODUCT) {
        BOOST_THROW_EXCEPTION(UnproperProductException());
    }
}

} // namespace

std::string IProductInfo::getVarikModelString() {
    throwIfZeb();
    return getVarikModelFromCorvanModel(getModelString());
}

std::string IProductInfo::getVarikModelFromCorvanModel(const std::string& model) {
    const std::size_t position = model.rfind('H');
    if (position == std::string::npos) {
        BOOST_THROW_EXCEPTION(
            GenericException() << errinfo_stream(
                "Can't figure out Varik model string. Corvan model string does not have 'H': ", model));
    }
    std::string varikModel = model;
    varikModel[position] = 'B';
    return varikModel;
}

std::string IProductInfo::getVarikSoftwareVersionDate() {
    throwIfZeb();
    return "0000-00-00";
}

std::uint16_t IProductInfo::getVarikSoftwareVersionMajor() {
    throwIfZeb();
    return 1000;
}

std::uint16_t IProductInfo::getVarikSoftwareVersionMinor() {
    throwIfZeb();
    return 0;
}

} // namespace Nerix::Platform
