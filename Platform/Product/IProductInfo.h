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

/// What kind of device this is, which software it runs, and where the package keeps its files.
///
/// initializeProduct is called once, on the main thread, before other threads exist; after that everything is
/// read-only and any thread may ask. Functions marked [init] throw ProductUninitializedException if it has
/// not been called. Facts come from the platform's system-information service, asked at each call; where it
/// fails, an ERR line is logged and SystemInfoAPIInternalProblemException is thrown, unless said otherwise.
class IProductInfo {
public:
    /// The names of the two devices ("cores"), "TV" and "Zeb".
    static const std::string CORE_ID_TV;
    static const std::string CORE_ID_ZEB;

    // State, in ProductState.cpp.

    /// Fixes the product for the life of the process. Asserts that this happens once and that type is
    /// TV_PRODUCT, ZEB_PRODUCT or DEFAULT_PRODUCT, which stands for TV_PRODUCT.
    static void initializeProduct(ProductType type);
    static void throwIfUninitialized(); ///< throws ProductUninitializedException before initializeProduct

    // Identity, in ProductIdentity.cpp.

    /// The board that the software was built for.
    static std::string getBoardType();
    static bool checkBoardType(const std::string& boardType); ///< whether it is exactly that, case included
    static bool isPostTovin();                                ///< the board "Post_TovinP"
    static bool isPostPask();                                 ///< the board "Post_PaskP"
    static bool isPostMirel();                                ///< the board "Post_MirelP"
    static bool isPreCorvanBoard();                           ///< any of the three

    /// One of the two names above. Asserts that type is TV_PRODUCT or ZEB_PRODUCT.
    static std::string getCoreName(ProductType type);

    static ProductType getDeviceType();       ///< initialised
    static bool isMasterDevice();             ///< initialised
    static ProductType getMasterDeviceType(); ///< initialised
    static bool isGuestCore();                ///< initialised; asks the platform when a Zeb box is connected
    static std::vector<std::string>
    getListOfCores(); ///< initialised; the devices that take part in an update
    static std::vector<std::string> getListOfVerifiers(); ///< initialised; the same
    static bool isSecondDeviceConnected();                ///< initialised
    static bool isGenuineTV();                            ///< as the platform says
    static bool isGenuineZeb();                           ///< as the platform says

    /// Whether the screen has 540 lines. Does not throw: false when the platform does not answer.
    static bool isScreenRatioFitNeeded();

    // Software, in ProductVersion.cpp. If the platform's text has no '-', these throw GenericException; if
    // the version is not numeric, boost::bad_lexical_cast (except getVersionString, which does not parse it).
    // Major and minor are modulo 65536.

    static std::string getModelString();                      ///< initialised
    static std::string getVersionString();                    ///< initialised; "major.minor"
    static std::uint16_t getMainSoftwareVersionMajor();       ///< initialised
    static std::uint16_t getMainSoftwareVersionMinor();       ///< initialised
    static std::string getMainSoftwareVersionDate();          ///< initialised
    static std::string getSubmicomVersion();                  ///< initialised
    static boost::filesystem::path getPartitionTxtFilePath(); ///< initialised

    /// The Varik facts throw UnproperProductException on a Zeb box.
    static std::string getVarikModelString();            ///< initialised
    static std::string getVarikSoftwareVersionDate();    ///< initialised
    static std::uint16_t getVarikSoftwareVersionMajor(); ///< initialised
    static std::uint16_t getVarikSoftwareVersionMinor(); ///< initialised

    /// model with its last 'H' replaced by 'B'. Throws GenericException when there is none.
    static std::string getVarikModelFromCorvanModel(const std::string& model);

    // Paths and sizes (bytes), in ProductPaths.cpp; all initialised. The paths need not exist. The
    // flash-device and file-system roots are empty strings, because all paths are absolute. If the platform
    // does not know a directory, that part of the path is missing; getUSBMountPath is then empty.

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

    // Emulated facts of development devices, in ProductEmulation.cpp; all initialised. Stored in one file;
    // see EmulatedInfo.h, also for exceptions. Getters return boost::none if there is no file. Getters of
    // numbers and of the zone throw boost::bad_lexical_cast if the entry is not a number or a single
    // character.

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

    /// Deletes the file; no failure when there is none. Throws boost::filesystem::filesystem_error when it
    /// cannot be deleted.
    static void removeEmulationInfo();

private:
    static const ProductSpecificInfo& info(); ///< initialised

    static ProductSpecificInfo m_productSpecificInfo;
    static ProductType m_productType;
    static bool m_isZebConnected; ///< never set yet: how a Zeb box is detected is open
};

/// The text that the platform reports for the software of this device: "model-major.minor". Initialised.
std::string getSWVersionString();

/// The parts of getSWVersionString(), split at its last '-'; major and minor modulo 65536. Throws
/// GenericException when there is no '-', and what NerixCommonUtils::parseVersion throws. Initialised.
void getParsedModelAndVersion(std::string& model, std::uint16_t& major, std::uint16_t& minor);

} // namespace Nerix::Platform
