#pragma once

#include <cstdint>
#include <string>

namespace Nerix::Platform {

/// Contains the paths of the update package's files on one type of product, and the maximum sizes of its
/// storage in bytes.
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

/// Returns the paths and sizes for a television (true) or a Zeb box (false). Queries the platform's
/// directories at each call.
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
