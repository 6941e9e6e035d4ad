#pragma once

#include <string>

/// The platform's directories. Directories from the platform's path configuration are looked up at each call;
/// if one is missing, a warning is logged and an empty string returned.
namespace Nerix::Platform::PlatformInternal {

std::string getSystemRWPath();
std::string getBackupPath();
std::string getSystemUsrAppsROPath();  ///< system apps, read-only
std::string getSystemUsrAppsRWPath();  ///< system apps, read-write
std::string getSystemUsrBinPath();     ///< system binaries
std::string getSystemUsrShareROPath(); ///< system shared data, read-only
std::string getSystemUsbStoragePath(); ///< where USB drives are mounted

} // namespace Nerix::Platform::PlatformInternal
