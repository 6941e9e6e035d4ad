#include "Debug/DebugAndTestParameters/InstallationPerformanceParameters.h"

#include "Common/Logging/Log.h"
#include "Common/Utils/Filesystem.h"
#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "Debug/DebugAndTestParameters/ParametersArchive.h"
#include "Debug/DebugAndTestParameters/ParametersFile.h"

#include <exception>

namespace Nerix {

const InstallationPerformanceParameters& InstallationPerformanceParameters::getDefaultParameters() {
    static const InstallationPerformanceParameters defaults;
    return defaults;
}

void InstallationPerformanceParameters::load(const std::string& path) {
    try {
        std::ifstream file = Common::Utils::filesystem::openRegularFile(path);
        ParametersArchive::read(file, *this);
    } catch (const std::exception&) {
        NERIX_LOG(WRN, "Failed to load InstallationPerformanceParameters from %s", path.c_str());
    }
}

void InstallationPerformanceParameters::save(const std::string& path) const {
    try {
        ParametersFile::save(path, *this);
    } catch (const std::exception&) {
        NERIX_LOG(WRN, "Failed to save InstallationPerformanceParameters to %s", path.c_str());
    }
}

InstallationPerformanceParameters& getInstallationPerformanceParameters() {
    return Common::getDebugAndTestParameters().getInstallationPerformanceParameters();
}

} // namespace Nerix
