#pragma once

#include "Platform/Product/ProductExceptions.h"
#include "Platform/Product/ProductSpecificInfo.h"
#include "Platform/Product/ProductType.h"

#include <boost/filesystem/path.hpp>
#include <boost/optional/optional.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace Nerix::Platform {

/// Describes the device: its type, its software, and where the package keeps its files.
///
/// Call initializeProduct once, on the main thread, before other threads exist; all other functions except
/// those that change emulated facts are then thread-safe. Functions marked [init] throw
/// ProductUninitializedException before that call. Facts are read from the platform's system-information
/// service at each call. If it fails, the function logs at ERR and throws
/// SystemInfoAPIInternalProblemException, unless stated otherwise.
class IProductInfo {
public:
    /// The names of the two devices ("cores"), "TV" and "Zeb".
    static const std::string CORE_ID_TV;
    static const std::string CORE_ID_ZEB;

    // State, in ProductState.cpp.

    /// Sets the product type for the life of the process. Asserts that it is called once and that type is
    /// TV_PRODUCT, ZEB_PRODUCT or DEFAULT_PRODUCT, which stands for TV_PRODUCT.
    static void initializeProduct(ProductType type);
    static void throwIfUninitialized(); ///< throws ProductUninitializedException before initializeProduct

    // Identity, in ProductIdentity.cpp.

    /// Returns the board that the software was built for.
    static std::string getBoardType();
    static bool checkBoardType(const std::string& boardType); ///< compares case-sensitively
    static bool isPostTovin();                                ///< true for the board "Post_TovinP"
    static bool isPostPask();                                 ///< true for the board "Post_PaskP"
    static bool isPostMirel();                                ///< true for the board "Post_MirelP"
    static bool isPreCorvanBoard();                           ///< true for any of these three

    /// Returns CORE_ID_TV or CORE_ID_ZEB. Asserts that type is TV_PRODUCT or ZEB_PRODUCT.
    static std::string getCoreName(ProductType type);

    static ProductType getDeviceType();       ///< [init]
    static bool isMasterDevice();             ///< [init]
    static ProductType getMasterDeviceType(); ///< [init]
    static bool isGuestCore();                ///< [init] queries the platform only if a Zeb box is connected
    static std::vector<std::string> getListOfCores(); ///< [init] returns the devices that an update covers
    static std::vector<std::string> getListOfVerifiers(); ///< [init] returns getListOfCores()
    static bool isSecondDeviceConnected();                ///< [init]
    static bool isGenuineTV();                            ///< as reported by the platform
    static bool isGenuineZeb();                           ///< as reported by the platform

    /// Returns true if the screen has 540 lines. Returns false, and does not throw, if the service fails.
    static bool isScreenRatioFitNeeded();

    // Software, in ProductVersion.cpp. The model and version functions throw GenericException if the
    // platform's text has no '-', and, except getVersionString, boost::bad_lexical_cast if the version is not
    // numeric. Major and minor are modulo 65536. The Varik version and date are constants.

    static std::string getModelString();                      ///< [init]
    static std::string getVersionString();                    ///< [init] "major.minor"
    static std::uint16_t getMainSoftwareVersionMajor();       ///< [init]
    static std::uint16_t getMainSoftwareVersionMinor();       ///< [init]
    static std::string getMainSoftwareVersionDate();          ///< [init]
    static std::string getSubmicomVersion();                  ///< [init]
    static boost::filesystem::path getPartitionTxtFilePath(); ///< [init]

    /// The Varik functions throw UnproperProductException on a Zeb box.
    static std::string getVarikModelString();            ///< [init]
    static std::string getVarikSoftwareVersionDate();    ///< [init]
    static std::uint16_t getVarikSoftwareVersionMajor(); ///< [init]
    static std::uint16_t getVarikSoftwareVersionMinor(); ///< [init]

    /// Returns model with its last 'H' replaced by 'B'. Throws GenericException if it contains no 'H'.
    static std::string getVarikModelFromCorvanModel(const std::string& model);

    // Paths and sizes (bytes), in ProductPaths.cpp; all [init]. The paths need not exist. The flash-device
    // and file-system roots are empty strings, because all paths are absolute. If the platform does not know
    // a directory, that part of the path is missing; getUSBMountPath is then empty.

    static std::string getFlashDeviceRootPath();
    static std::string getNerixPartitionPath();
    static std::string getNerixBigTempPath();
    static std::string getFileSystemRootPath();
    static std::string getMBUPartitionMountPath();
    static std::string getUSBMountPath();
    static std::string getLastSearchingDateFilePath();
    static std::string getNerixFactoryResetFlagPath();
    static std::string getNerixFinalizingUpgradeFlagPath();
    static std::string getEmulatedInfoPath();
    static std::string getLastPluginFailureFlagFilePath();
    static std::string getKrafsScriptsDirectory();
    static std::string getLibraryKeyPath();
    static std::string getUpdateInfoFilePath();
    static std::string getKPIDescriptionFilePath();
    static std::uint64_t getNerixBigTempStorageMaxSize();
    static std::uint64_t getNerixSmallTempStorageMaxSize();
    static boost::filesystem::path getSystemUsrAppsROPath();
    static boost::filesystem::path getSystemUsrBinPath();
    static boost::filesystem::path getBackupPath();

    // Emulated facts of development devices, in ProductEmulation.cpp; all [init]. Stored in one file; see
    // EmulatedInfo.h, also for exceptions. Getters return boost::none if there is no file. Getters of numbers
    // and of the zone throw boost::bad_lexical_cast if the entry is not a number or a single character.

    /// The keys of the entries.
    static constexpr const char* EMULATED_MODEL_STRING_KEY = "ModelString";
    static constexpr const char* EMULATED_VERSION_MAJOR_KEY = "VersionMajor";
    static constexpr const char* EMULATED_VERSION_MINOR_KEY = "VersionMinor";
    static constexpr const char* EMULATED_DATE_KEY = "Date";
    static constexpr const char* EMULATED_PARTITION_TXT_FILE_PATH = "PartitionTxtFilePath";
    static constexpr const char* EMULATED_OTN_ZONE = "OTNZone";
    static constexpr const char* EMULATED_SUBMICOM_VERSION = "Submicom";
    static constexpr const char* EMULATED_QORL_SERVICE_ID = "ServiceID";

    static void setEmulatedModelString(const std::string& model);
    static boost::optional<std::string> getEmulatedModelString();
    static void setEmulatedMainSoftwareVersionMajor(std::uint16_t major);
    static boost::optional<std::uint16_t> getEmulatedMainSoftwareVersionMajor();
    static void setEmulatedMainSoftwareVersionMinor(std::uint16_t minor);
    static boost::optional<std::uint16_t> getEmulatedMainSoftwareVersionMinor();
    static boost::optional<std::string> getEmulatedVersionString(); ///< "major.minor"
    static void setEmulatedMainSoftwareVersionDate(const std::string& date);
    static boost::optional<std::string> getEmulatedMainSoftwareVersionDate();
    static boost::optional<boost::filesystem::path> getEmulatedPartitionTxtFilePath();
    static void setEmulatedOTNZone(char zone);
    static boost::optional<char> getEmulatedOTNZone();
    static boost::optional<std::string> getEmulatedSubmicomVersion();
    static boost::optional<std::string> getEmulatedQorlServiceID();

    /// Deletes the file if it exists. Throws boost::filesystem::filesystem_error if it cannot be deleted.
    static void removeEmulationInfo();

private:
    static const ProductSpecificInfo& info(); ///< [init]

    static ProductSpecificInfo m_productSpecificInfo;
    static ProductType m_productType;
    static bool m_isZebConnected; ///< always false: detection of a Zeb box is not implemented
};

/// [init] Returns the platform's text for the software of this device: "model-major.minor".
std::string getSWVersionString();

/// [init] Splits getSWVersionString() at its last '-'; major and minor are modulo 65536. Throws
/// GenericException if there is no '-', and the exceptions of NerixCommonUtils::parseVersion.
void getParsedModelAndVersion(std::string& model, std::uint16_t& major, std::uint16_t& minor);

} // namespace Nerix::Platform
