#include "Platform/Product/IProductInfo.h"

#include "Platform/Product/SystemDirectories.h"

namespace Nerix::Platform {

std::string IProductInfo::getFlashDeviceRootPath() {
    return info().flashDeviceRootPath;
}
std::string IProductInfo::getNerixPartitionPath() {
    return info().nerixPartitionPath;
}
std::string IProductInfo::getNerixBigTempPath() {
    return info().nerixBigTempPath;
}
std::string IProductInfo::getFileSystemRootPath() {
    return info().fileSystemRootPath;
}
std::string IProductInfo::getMBUPartitionMountPath() {
    return info().mbuPartitionMountPath;
}
std::string IProductInfo::getUSBMountPath() {
    return info().usbMountPath;
}
std::string IProductInfo::getLastSearchingDateFilePath() {
    return info().lastSearchingDateFilePath;
}
std::string IProductInfo::getNerixFactoryResetFlagPath() {
    return info().nerixFactoryResetFlagPath;
}
std::string IProductInfo::getNerixFinalizingUpgradeFlagPath() {
    return info().nerixFinalizingUpgradeFlagPath;
}
std::string IProductInfo::getEmulatedInfoPath() {
    return info().emulatedInfoPath;
}
std::string IProductInfo::getLastPluginFailureFlagFilePath() {
    return info().lastPluginFailureFlagFilePath;
}
std::string IProductInfo::getKrafsScriptsDirectory() {
    return info().krafsScriptsDirectory;
}
std::string IProductInfo::getLibraryKeyPath() {
    return info().libraryKeyPath;
}
std::string IProductInfo::getUpdateInfoFilePath() {
    return info().updateInfoFilePath;
}
std::string IProductInfo::getKPIDescriptionFilePath() {
    return info().kpiDescriptionFilePath;
}
std::uint64_t IProductInfo::getNerixBigTempStorageMaxSize() {
    return info().nerixBigTempStorageMaxSize;
}
std::uint64_t IProductInfo::getNerixSmallTempStorageMaxSize() {
    return info().nerixSmallTempStorageMaxSize;
}

boost::filesystem::path IProductInfo::getSystemUsrAppsROPath() {
    const boost::filesystem::path root = getFileSystemRootPath(); // throws first if uninitialized
    return root / PlatformInternal::getSystemUsrAppsROPath();
}

boost::filesystem::path IProductInfo::getSystemUsrBinPath() {
    const boost::filesystem::path root = getFileSystemRootPath(); // throws first if uninitialized
    return root / PlatformInternal::getSystemUsrBinPath();
}

boost::filesystem::path IProductInfo::getBackupPath() {
    const boost::filesystem::path root = getFileSystemRootPath(); // throws first if uninitialized
    return root / PlatformInternal::getBackupPath();
}

} // namespace Nerix::Platform
