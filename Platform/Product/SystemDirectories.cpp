#include "Platform/Product/SystemDirectories.h"

#include "Common/Logging/Log.h"
#include "PlatformInterfaces/path_config.h"

namespace Nerix::Platform::PlatformInternal {

namespace {

/// Ids of the platform's path variables.
enum PathVariable { USR_BIN = 6, USR_APPS_RO = 20, USR_SHARE_RO = 25, USR_APPS_RW = 31, USB_STORAGE = 43 };

std::string lookUp(PathVariable variable) {
    const char* const directory = path_config_get(variable);
    if (directory == nullptr) {
        NERIX_LOG(WRN, "The platform has no directory for path variable %d", static_cast<int>(variable));
        return "";
    }
    return directory;
}

} // namespace

std::string getSystemRWPath() {
    return "/mnt/systemrw";
}
std::string getBackupPath() {
    return "/mnt/backup";
}
std::string getSystemUsrAppsROPath() {
    return lookUp(USR_APPS_RO);
}
std::string getSystemUsrAppsRWPath() {
    return lookUp(USR_APPS_RW);
}
std::string getSystemUsrBinPath() {
    return lookUp(USR_BIN);
}
std::string getSystemUsrShareROPath() {
    return lookUp(USR_SHARE_RO);
}
std::string getSystemUsbStoragePath() {
    return lookUp(USB_STORAGE);
}

} // namespace Nerix::Platform::PlatformInternal
