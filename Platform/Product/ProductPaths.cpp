#include "Platform/Product/IProductInfo.h"

#include "Platform/Product/SystemDirectories.h"

namespace Nerix::Platform {

std::string IProductInfo::getFlashDeviceRootPath() {
    throwIfUninitialized();
    return m_productSpecificInfo.flashDeviceRootPath;
}

std::string IProductInfo::getNerixPartitionPath() {
    throwIfUninitialized();
    return m_productSpecificInfo.nerixPartitionPath;
}

std::string IProductInfo::getNerixBigTempPath() {
    throwIfUninitialized();
    return m_productSpecificInfo.nerixBigTempPath;
}

std::string IProductInfo::getFileSystemRootPath() {
    throwIfUninitialized();
    return m_productSpecificInfo.fileSystemRootPath;
}

std::string IProductInfo::getMBUPartitionMountPath() {
    throwIfUninitialized();
    return m_productSpecificInfo.mbuPartitionMountPath;
}

std::string IProductInfo::getUSBMountPath() {
    throwIfUninitialized();
    return m_productSpecificInfo.usbMountPath;
}

std::string IProductInfo::getLastSearchingDateFilePath() {
    throwIfUninitialized();
    return m_productSpecificInfo.lastSearchingDateFilePath;
}

std::string IProductInfo::getNerixFactoryResetFlagPath() {
    throwIfUninitialized();
    return m_productSpecificInfo.nerixFactoryResetFlagPath;
}

std::string IProductInfo::getNerixFinalizingUpgradeFlagPath() {
    throwIfUninitialized();
    return m_productSpecificInfo.nerixFinalizingUpgradeFlagPath;
}

std::string IProductInfo::getEmulatedInfoPath() {
    throwIfUninitialized();
    return m_productSpecificInfo.emulatedInfoPath;
}

std::string IProductInfo::getLastPluginFailureFlagFilePath() {
    throwIfUninitialized();
    return m_productSpecificInfo.lastPluginFailureFlagFilePath;
}

std::string IProductInfo::getKrafsScriptsDirectory() {
    throwIfUninitialized();
    return m_productSpecificInfo.krafsScriptsDirectory;
}

std::string IProductInfo::getLibraryKeyPath() {
    throwIfUninitialized();
    return m_productSpecificInfo.libraryKeyPath;
}

std::string IProductInfo::getUpdateInfoFilePath() {
    throwIfUninitialized();
    return m_productSpecificInfo.updateInfoFilePath;
}

std::string IProductInfo::getKPIDescriptionFilePath() {
    throwIfUninitialized();
    return m_productSpecificInfo.kpiDescriptionFilePath;
}

std::uint64_t IProductInfo::getNerixBigTempStorageMaxSize() {
    throwIfUninitialized();
    return m_productSpecificInfo.nerixBigTempStorageMaxSize;
}

std::uint64_t IProductInfo::getNerixSmallTempStorageMaxSize() {
    throwIfUninitialized();
    return m_productSpecificInfo.nerixSmallTempStorageMaxSize;
}

boost::filesystem::path IProductInfo::getSystemUsrAppsROPath() {
    return boost::filesystem::path(getFileSystemRootPath()) / PlatformInternal::getSystemUsrAppsROPath();
}

boost::filesystem::path IProductInfo::getSystemUsrBinPath() {
    return boost::filesystem::path(getFileSystemRootPath()) / PlatformInternal::getSystemUsrBinPath();
}

boost::filesystem::path IProductInfo::getBackupPath() {
    return boost::filesystem::path(getFileSystemRootPath()) / PlatformInternal::getBackupPath();
}

} // namespace Nerix::Platform
