#include "Platform/Product/ProductSpecificInfo.h"

#include "Platform/Product/SystemDirectories.h"

namespace Nerix::Platform::PlatformInternal {

namespace {

const std::string packageDirectory = "/org.corvan.tv.nerix";
const std::string commonDataDirectory = packageDirectory + "/data";

constexpr std::uint64_t mebibyte = 1ULL << 20U;

} // namespace

ProductSpecificInfo getProductSpecificInfo(bool isTV) {
    // All paths are plain concatenations: each part brings its own '/'.
    const std::string root;
    const std::string dataDirectory = commonDataDirectory + (isTV ? "/tv" : "/zeb");
    const std::string partition = root + getSystemRWPath() + dataDirectory;

    ProductSpecificInfo info;
    info.root = root;
    info.flashDeviceRootPath = root;
    info.nerixPartitionPath = partition;
    info.nerixBigTempPath = root + getSystemUsrAppsRWPath() + dataDirectory;
    info.fileSystemRootPath = root;
    info.mbuPartitionMountPath = partition + "/mbu_mount_point";
    info.usbMountPath = root + getSystemUsbStoragePath();
    info.lastSearchingDateFilePath = partition + "/LastSearchingDate";
    info.nerixFactoryResetFlagPath = partition + "/NerixFactoryResetFlag";
    info.nerixFinalizingUpgradeFlagPath = partition + "/NerixFinalizingUpgradeFlag";
    info.emulatedInfoPath = partition + "/EmulatedInfo.txt";
    info.lastPluginFailureFlagFilePath = partition + "/plugin_failure_flags";
    info.krafsScriptsDirectory = root + getSystemUsrAppsROPath() + packageDirectory;
    info.libraryKeyPath = root + getSystemUsrShareROPath() + packageDirectory + "/libnerixprodkeys.so";
    info.updateInfoFilePath = partition + "/UpdateInfo.xml";
    // Common to both products. The missing '/' before "kpi" is intentional: devices in the field use that
    // name.
    info.kpiDescriptionFilePath = root + getSystemRWPath() + commonDataDirectory + "kpi";
    info.nerixBigTempStorageMaxSize = 900 * mebibyte;
    info.nerixSmallTempStorageMaxSize = 10 * mebibyte;
    return info;
}

} // namespace Nerix::Platform::PlatformInternal
