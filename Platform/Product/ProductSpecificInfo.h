#pragma once

#include <cstdint>
#include <string>

namespace Nerix::Platform {

/// Where the update package keeps its files on one type of product, and how much it may keep. Sizes are
/// in bytes.
struct ProductSpecificInfo {
    std::string root;
    std::string flashDeviceRootPath;
    std::string nerixPartitionPath;
    std::string nerixBigTempPath;
    std::string fileSystemRootPath;
    std::string mbuPartitionMountPath;
    std::string usbMountPath;
    std::string lastSearchingDateFilePath;
    std::string nerixFactoryResetFlagPath;
    std::string nerixFinalizingUpgradeFlagPath;
    std::string emulatedInfoPath;
    std::string lastPluginFailureFlagFilePath;
    std::string krafsScriptsDirectory;
    std::string libraryKeyPath;
    std::string updateInfoFilePath;
    std::string kpiDescriptionFilePath;
    std::uint64_t nerixBigTempStorageMaxSize = 0;
    std::uint64_t nerixSmallTempStorageMaxSize = 0;
};

namespace PlatformInternal {

/// The record of a television (true) or of a Zeb box (false). Each call asks the platform for
/// its directories.
ProductSpecificInfo getProductSpecificInfo(bool isTV);

} // namespace PlatformInternal

struct TVProductInfo {
    static ProductSpecificInfo getProductSpecificInfo() {
        return PlatformInternal::getProductSpecificInfo(true);
    }
};

struct ZebProductInfo {
    static ProductSpecificInfo getProductSpecificInfo() {
        return PlatformInternal::getProductSpecificInfo(false);
    }
};

} // namespace Nerix::Platform
