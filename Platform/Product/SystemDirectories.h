#pragma once

#include <string>

/// Returns the platform's directories. Looks up those from the path configuration at each call; if one is
/// missing, logs a warning and returns an empty string.
namespace Nerix::Platform::PlatformInternal {

std::string getSystemRWPath();
std::string getBackupPath();
std::string getSystemUsrAppsROPath();  ///< system apps, read-only
std::string getSystemUsrAppsRWPath();  ///< system apps, read-write
std::string getSystemUsrBinPath();     ///< system binaries
std::string getSystemUsrShareROPath(); ///< system shared data, read-only
std::string getSystemUsbStoragePath(); ///< where USB drives are mounted

} // namespace Nerix::Platform::PlatformInternal
