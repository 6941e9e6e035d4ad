#include "Platform/Product/IProductInfo.h"

#include "Common/Utils/Errors.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"

#include <gtest/gtest.h>

#include <functional>

namespace Nerix::Tests {
namespace {

using Info = Platform::IProductInfo;

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
        EXPECT_TRUE(Info::isMasterDevice());
        EXPECT_FALSE(Info::isGuestCore());
        EXPECT_TRUE(Info::isScreenRatioFitNeeded());
        EXPECT_EQ(Info::getModelString(), "T-ABHCHD");
        EXPECT_EQ(Info::getVersionString(), "1234.5");
        EXPECT_EQ(Info::getMainSoftwareVersionMajor(), 1234);
        EXPECT_EQ(Info::getMainSoftwareVersionMinor(), 5);
        EXPECT_EQ(Info::getMainSoftwareVersionDate(), "2026-01-02");
        EXPECT_EQ(Info::getSubmicomVersion(), "0.7");
        EXPECT_EQ(Info::getPartitionTxtFilePath(), "/p.txt");
        EXPECT_EQ(Info::getVarikModelString(), "T-ABHCBD");
        FakePlatform::instance().systemInfo[128] = std::string("no.dash");
        EXPECT_THROW(Info::getModelString(), Common::Utils::GenericException);
        EXPECT_EQ(FakePlatform::instance()
                      .logHolding(">getParsedModelAndVersion: Wrong string format - lack of dash: no.dash")
                      .size(),
                  1U);
        FakePlatform::instance().systemInfo.clear();
        EXPECT_THROW(Info::getVersionString(), Platform::SystemInfoAPIInternalProblemException);
        EXPECT_THROW(Info::isGenuineTV(), Platform::SystemInfoAPIInternalProblemException);
        EXPECT_FALSE(Info::isScreenRatioFitNeeded());
    });
}

TEST(ProductInfo, ZebBoxHasItsOwnSoftwareAndNoVarikFacts) {
    inProcessOf(Platform::ZEB_PRODUCT, [] {
        EXPECT_EQ(Info::getDeviceType(), Platform::ZEB_PRODUCT);
        EXPECT_EQ(Info::getModelString(), "Z-X");
        EXPECT_EQ(Info::getMainSoftwareVersionMajor(), 70000 - 65536);
        EXPECT_EQ(Info::getMainSoftwareVersionMinor(), 0);
        EXPECT_THROW(Info::getVarikModelString(), Platform::UnproperProductException);
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
        EXPECT_THROW(Info::getDeviceType(), Platform::ProductUninitializedException);
        EXPECT_THROW(Info::getModelString(), Platform::ProductUninitializedException);
        EXPECT_THROW(Info::getNerixPartitionPath(), Platform::ProductUninitializedException);
        EXPECT_THROW(Info::getSystemUsrBinPath(), Platform::ProductUninitializedException);
        EXPECT_THROW(Info::getEmulatedOTNZone(), Platform::ProductUninitializedException);
        EXPECT_EQ(Info::getBoardType(), "emulator32");
        EXPECT_TRUE(Info::checkBoardType("emulator32"));
        EXPECT_FALSE(Info::checkBoardType("Emulator32"));
        EXPECT_FALSE(Info::isPreCorvanBoard());
        EXPECT_EQ(Info::getCoreName(Platform::ZEB_PRODUCT), "Zeb");
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
