#include "Platform/Product/IProductInfo.h"

#include "Common/Utils/Errors.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"

#include <boost/exception/get_error_info.hpp>
#include <gtest/gtest.h>

#include <functional>

namespace Nerix::Tests {
namespace {

using Info = Platform::IProductInfo;
using Common::Utils::errinfo_description;

void inProcessOf(Platform::ProductType product, const std::function<void()>& body) {
    inOwnProcess([&] {
        FakePlatform& platform = FakePlatform::instance();
        platform.reset();
        platform.pathVariables = {{6, "/v6"}, {20, "/v20"}, {25, "/v25"}, {31, "/v31"}, {43, "/v43"}};
        platform.systemInfo = {{128, std::string("T-ABHCHD-1234.5")},
                               {378, std::string("Z-X-70000")},
                               {8, std::string("2026-01-02")},
                               {133, std::string("0.7")},
                               {301, std::string("/p.txt")},
                               {203, 540},
                               {358, true},
                               {359, false}};
        if (product != Platform::UNDEFINED_PRODUCT) {
            Info::initializeProduct(product);
        }
        body();
    });
}

TEST(ProductInfo, TelevisionByDefault) {
    inProcessOf(Platform::DEFAULT_PRODUCT, [] {
        EXPECT_EQ(FakePlatform::instance().logHolding(">Product type set to TV_PRODUCT").size(), 1U);
        EXPECT_EQ(Info::getDeviceType(), Platform::TV_PRODUCT);
        EXPECT_EQ(Info::getListOfCores(), std::vector<std::string>{"TV"});
        EXPECT_EQ(Info::getListOfVerifiers(), Info::getListOfCores());
        EXPECT_FALSE(Info::isSecondDeviceConnected());
        EXPECT_TRUE(Info::isMasterDevice());
        EXPECT_FALSE(Info::isGuestCore());
        EXPECT_EQ(Info::getMasterDeviceType(), Platform::TV_PRODUCT);
        EXPECT_TRUE(Info::isGenuineTV());
        EXPECT_FALSE(Info::isGenuineZeb());
        EXPECT_TRUE(Info::isScreenRatioFitNeeded());
        EXPECT_EQ(Info::getModelString(), "T-ABHCHD");
        EXPECT_EQ(Info::getVersionString(), "1234.5");
        EXPECT_EQ(Info::getMainSoftwareVersionMajor(), 1234);
        EXPECT_EQ(Info::getMainSoftwareVersionMinor(), 5);
        EXPECT_EQ(Info::getMainSoftwareVersionDate(), "2026-01-02");
        EXPECT_EQ(Info::getSubmicomVersion(), "0.7");
        EXPECT_EQ(Info::getPartitionTxtFilePath(), "/p.txt");
        EXPECT_EQ(Info::getVarikModelString(), "T-ABHCBD");
        EXPECT_EQ(Info::getVarikSoftwareVersionDate(), "0000-00-00");
        EXPECT_EQ(Info::getVarikSoftwareVersionMajor(), 1000);
        EXPECT_EQ(Info::getVarikSoftwareVersionMinor(), 0);
    });
}

TEST(ProductInfo, ZebBoxHasItsOwnSoftwareAndNoVarikFacts) {
    inProcessOf(Platform::ZEB_PRODUCT, [] {
        EXPECT_EQ(Info::getDeviceType(), Platform::ZEB_PRODUCT);
        EXPECT_EQ(Info::getModelString(), "Z-X");
        EXPECT_EQ(Info::getMainSoftwareVersionMajor(), 70000 - 65536);
        EXPECT_EQ(Info::getMainSoftwareVersionMinor(), 0);
        EXPECT_THROW(Info::getVarikModelString(), Platform::UnproperProductException);
        EXPECT_THROW(Info::getVarikSoftwareVersionDate(), Platform::UnproperProductException);
        EXPECT_THROW(Info::getVarikSoftwareVersionMajor(), Platform::UnproperProductException);
        EXPECT_THROW(Info::getVarikSoftwareVersionMinor(), Platform::UnproperProductException);
        EXPECT_EQ(Info::getNerixPartitionPath(), "/mnt/systemrw/org.corvan.tv.nerix/data/zeb");
        EXPECT_EQ(Info::getKPIDescriptionFilePath(), "/mnt/systemrw/org.corvan.tv.nerix/datakpi");
    });
}

TEST(ProductInfo, PathsOfATelevision) {
    inProcessOf(Platform::TV_PRODUCT, [] {
        const std::string data = "/org.corvan.tv.nerix/data/tv";
        const std::string partition = "/mnt/systemrw" + data;
        const std::vector<std::pair<std::string, std::string>> paths = {
            {Info::getFlashDeviceRootPath(), ""},
            {Info::getNerixPartitionPath(), partition},
            {Info::getNerixBigTempPath(), "/v31" + data},
            {Info::getFileSystemRootPath(), ""},
            {Info::getMBUPartitionMountPath(), partition + "/mbu_mount_point"},
            {Info::getUSBMountPath(), "/v43"},
            {Info::getLastSearchingDateFilePath(), partition + "/LastSearchingDate"},
            {Info::getNerixFactoryResetFlagPath(), partition + "/NerixFactoryResetFlag"},
            {Info::getNerixFinalizingUpgradeFlagPath(), partition + "/NerixFinalizingUpgradeFlag"},
            {Info::getEmulatedInfoPath(), partition + "/EmulatedInfo.txt"},
            {Info::getLastPluginFailureFlagFilePath(), partition + "/plugin_failure_flags"},
            {Info::getKrafsScriptsDirectory(), "/v20/org.corvan.tv.nerix"},
            {Info::getLibraryKeyPath(), "/v25/org.corvan.tv.nerix/libnerixprodkeys.so"},
            {Info::getUpdateInfoFilePath(), partition + "/UpdateInfo.xml"},
            {Info::getKPIDescriptionFilePath(), "/mnt/systemrw/org.corvan.tv.nerix/datakpi"},
            {Info::getSystemUsrAppsROPath().native(), "/v20"},
            {Info::getSystemUsrBinPath().native(), "/v6"},
            {Info::getBackupPath().native(), "/mnt/backup"},
        };
        for (const auto& [path, expected] : paths) {
            EXPECT_EQ(path, expected);
        }
        EXPECT_EQ(Info::getNerixBigTempStorageMaxSize(), 943718400U);
        EXPECT_EQ(Info::getNerixSmallTempStorageMaxSize(), 10485760U);
    });
}

TEST(ProductInfo, NothingIsKnownBeforeInitialisation) {
    inProcessOf(Platform::UNDEFINED_PRODUCT, [] {
        const std::vector<std::function<void()>> questions = {[] { Info::getDeviceType(); },
                                                              [] { Info::isMasterDevice(); },
                                                              [] { Info::getListOfCores(); },
                                                              [] { Info::isGuestCore(); },
                                                              [] { Info::getModelString(); },
                                                              [] { Info::getVersionString(); },
                                                              [] { Info::getVarikSoftwareVersionMinor(); },
                                                              [] { Info::getPartitionTxtFilePath(); },
                                                              [] { Info::getNerixPartitionPath(); },
                                                              [] { Info::getNerixBigTempStorageMaxSize(); },
                                                              [] { Info::getSystemUsrBinPath(); },
                                                              [] { Info::getEmulatedOTNZone(); }};
        for (const auto& question : questions) {
            EXPECT_THROW(question(), Platform::ProductUninitializedException);
        }
        EXPECT_EQ(Info::getBoardType(), "emulator32");
        EXPECT_TRUE(Info::checkBoardType("emulator32"));
        EXPECT_FALSE(Info::checkBoardType("Emulator32"));
        EXPECT_FALSE(Info::isPreCorvanBoard());
        EXPECT_EQ(Info::getCoreName(Platform::ZEB_PRODUCT), "Zeb");
    });
}

TEST(ProductInfo, FailuresOfThePlatformAreLoggedAndThrown) {
    inProcessOf(Platform::TV_PRODUCT, [] {
        FakePlatform::instance().systemInfo.clear();
        const std::vector<std::pair<std::function<void()>, std::string>> cases = {
            {[] { Info::getModelString(); }, "Unable to read SW version from system-info"},
            {[] { Info::getSubmicomVersion(); }, "Unable to read SW version from system-info"},
            {[] { Info::getPartitionTxtFilePath(); }, "Unable to read partition file path from system-info"},
            {[] { Info::isGenuineTV(); }, "Unable to get product type configuration - TV"},
            {[] { Info::isGenuineZeb(); }, "Unable to get product type configuration - Zeb"},
        };
        for (const auto& [question, failure] : cases) {
            try {
                question();
                ADD_FAILURE() << failure;
            } catch (const Platform::SystemInfoAPIInternalProblemException& exception) {
                EXPECT_EQ(*boost::get_error_info<errinfo_description>(exception), failure);
            }
            EXPECT_FALSE(FakePlatform::instance().logHolding(">" + failure).empty());
        }
        EXPECT_FALSE(Info::isScreenRatioFitNeeded());
    });
}

TEST(ProductInfo, VersionTextsThatCannotBeUnderstood) {
    inProcessOf(Platform::TV_PRODUCT, [] {
        FakePlatform::instance().systemInfo[128] = std::string("no.dash");
        for (const auto& [name, question] : std::vector<std::pair<std::string, std::function<void()>>>{
                 {"getParsedModelAndVersion", [] { Info::getModelString(); }},
                 {"getVersionString", [] { Info::getVersionString(); }}}) {
            const std::string failure = name + ": Wrong string format - lack of dash";
            try {
                question();
                ADD_FAILURE() << name;
            } catch (const Common::Utils::GenericException& exception) {
                EXPECT_EQ(*boost::get_error_info<errinfo_description>(exception), failure);
                EXPECT_EQ(*boost::get_error_info<Common::Utils::errinfo_string>(exception), "no.dash");
            }
            EXPECT_EQ(FakePlatform::instance().logHolding(">" + failure + ": no.dash").size(), 1U);
        }
        EXPECT_THROW(Info::getVarikModelFromCorvanModel("ABC"), Common::Utils::GenericException);
    });
}

TEST(ProductInfoDeathTest, InitialisationHappensOnceAndWithAProduct) {
    EXPECT_DEATH(
        {
            Info::initializeProduct(Platform::TV_PRODUCT);
            Info::initializeProduct(Platform::TV_PRODUCT);
        },
        "ASSERTION FAILED: m_productType == UNDEFINED_PRODUCT, ");
    EXPECT_DEATH(Info::initializeProduct(Platform::UNDEFINED_PRODUCT), "ASSERTION FAILED: false, ");
}

} // namespace
} // namespace Nerix::Tests
