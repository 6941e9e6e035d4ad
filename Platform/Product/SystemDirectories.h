#pragma once

#include <string>

/// Returns the platform's directories. The first two are constants. Looks up the others in the path
/// configuration at each call; if one is missing there, logs a warning and returns an empty string.
namespace Nerix::Platform::PlatformInternal {

std::string getSystemRWPath();
std::string getBackupPath();
std::string getSystemUsrAppsROPath();  ///< system apps, read-only
std::string getSystemUsrAppsRWPath();  ///< system apps, read-write
std::string getSystemUsrBinPath();     ///< system binaries
std::string getSystemUsrShareROPath(); ///< system shared data, read-only
std::string getSystemUsbStoragePath(); ///< where USB drives are mounted

} // namespace Nerix::Platform::PlatformInternal
