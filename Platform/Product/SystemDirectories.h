#pragma once

#include <string>

/// The platform's directories. Those that the platform's path configuration knows are asked for at each call;
/// when it has no text for one, that is logged at WRN and the text is empty.
namespace Nerix::Platform::PlatformInternal {

std::string getSystemRWPath();
std::string getBackupPath();
std::string getSystemUsrAppsROPath();  ///< system apps, read-only
std::string getSystemUsrAppsRWPath();  ///< system apps, read-write
std::string getSystemUsrBinPath();     ///< system binaries
std::string getSystemUsrShareROPath(); ///< system shared data, read-only
std::string getSystemUsbStoragePath(); ///< where USB drives are mounted

} // namespace Nerix::Platform::PlatformInternal
