#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"

#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Filesystem.h"
#include "Debug/DebugAndTestParameters/ParametersArchive.h"
#include "Debug/DebugAndTestParameters/ParametersFile.h"
#include "Platform/Product/IProductInfo.h"

#include <exception>

namespace Nerix::Common {

using Utils::errinfo_description;
using Utils::GenericException;

DebugAndTestParameters DebugAndTestParameters::instance;
bool DebugAndTestParameters::isLoaded = false;

void DebugAndTestParameters::loadDebugAndTestParameters(const std::string&) {
    if (isLoaded) {
        NERIX_LOG_STREAM(WRN) << "DebugAndTestParameters were already loaded.";
        return;
    }
    NERIX_LOG_STREAM(DBG) << "Loading DebugAndTestParameters.";
    instance.load();
    isLoaded = true;
}

bool DebugAndTestParameters::loaded() {
    return isLoaded;
}

DebugAndTestParameters& DebugAndTestParameters::getDebugAndTestParameters() {
    if (!isLoaded) {
        BOOST_THROW_EXCEPTION(GenericException()
                              << errinfo_description("DebugAndTestParameters were not loaded."));
    }
    return instance;
}

bool DebugAndTestParameters::reload() {
    if (!isLoaded) {
        NERIX_LOG_STREAM(ERR)
            << "DebugAndTestParameters not yet loaded - use loadDebugAndTestParameters() with "
               "appropriate telemetry first";
        BOOST_THROW_EXCEPTION(GenericException()
                              << errinfo_description("load DebugAndTestParameters before reload"));
    }
    return load();
}

bool DebugAndTestParameters::load() {
    const std::string path = getConfigFilePath();
    NERIX_LOG(INF, "Opening config from %s", path.c_str());
    std::ifstream file = Utils::filesystem::openRegularFile(path);
    if (!file.is_open()) {
        NERIX_LOG(WRN, "Failed to open DebugAndTestParameters from %s", path.c_str());
        return false;
    }
    try {
        ParametersArchive::read(file, *this);
        return true;
    } catch (const std::exception& failure) {
        NERIX_LOG(WRN, "Failed to load DebugAndTestParameters from %s: %s", path.c_str(), failure.what());
        return false;
    }
}

void DebugAndTestParameters::save() const {
    const std::string path = getConfigFilePath();
    try {
        ParametersFile::save(path, *this);
    } catch (const std::exception& failure) {
        NERIX_LOG(WRN, "Failed to save DebugAndTestParameters to %s: %s", path.c_str(), failure.what());
    }
}

std::string DebugAndTestParameters::getConfigFilePath() {
    return (boost::filesystem::path(Platform::IProductInfo::getNerixPartitionPath()) /
            "DebugAndTestParameters.xml")
        .native();
}

boost::optional<int> DebugAndTestParameters::getCustomIntParam(const std::string& name) const {
    const auto parameter = m_customIntParams.find(name);
    if (parameter == m_customIntParams.end()) {
        NERIX_LOG(DBG, "Getting custom debug parameter %s: parameter not set.", name.c_str());
        return boost::none;
    }
    NERIX_LOG(DBG, "Getting custom debug parameter %s: %d.", name.c_str(), parameter->second);
    return parameter->second;
}

int DebugAndTestParameters::getCustomIntParam(const std::string& name, int defaultValue) const {
    return getCustomIntParam(name).value_or(defaultValue);
}

boost::optional<bool> DebugAndTestParameters::getCustomBoolParam(const std::string& name) const {
    const boost::optional<int> value = getCustomIntParam(name);
    return value ? boost::optional<bool>(*value != 0) : boost::none;
}

bool DebugAndTestParameters::getCustomBoolParam(const std::string& name, bool defaultValue) const {
    return getCustomBoolParam(name).value_or(defaultValue);
}

void DebugAndTestParameters::setCustomIntParam(const std::string& name, boost::optional<int> value) {
    if (value) {
        m_customIntParams[name] = *value;
    } else {
        m_customIntParams.erase(name);
    }
}

void DebugAndTestParameters::setCustomBoolParam(const std::string& name, boost::optional<bool> value) {
    setCustomIntParam(name, value ? boost::optional<int>(*value ? 1 : 0) : boost::none);
}

DebugAndTestParameters& getDebugAndTestParameters() {
    return DebugAndTestParameters::getDebugAndTestParameters();
}

void loadDebugAndTestParameters(const boost::filesystem::path&) {
    getDebugAndTestParameters();
    DebugAndTestParameters::loadDebugAndTestParameters("Generic.");
}

} // namespace Nerix::Common
