#include "Platform/Product/IProductInfo.h"

#include "Common/Utils/Errors.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"

#include <gtest/gtest.h>

#include <functional>

namespace Nerix::Tests {
namespace {

using Info = Platform::IProductInfo;

void inProcessOf(Platform::ProductType product, const std::function<void(FakePlatform&)>& body) {
    inOwnProcess([&] {
        FakePlatform& platform = FakePlatform::instance();
        platform.pathVariables = {{6, "/v6"}, {20, "/v20"}, {25, "/v25"}, {31, "/v31"}, {43, "/v43"}};
        platform.systemInfo = {{128, "T-ABHCHD-1234.5"}, {378, "Z-X-70000"}, {8, "2026-01-02"}, {133, "0.7"},
                               {301, "/p.txt"},          {203, 540},         {358, true},       {359, false}};
        Info::initializeProduct(product);
        body(platform);
    });
}

TEST(ProductInfo, TelevisionByDefault) {
    inProcessOf(Platform::DEFAULT_PRODUCT, [](FakePlatform& platform) {
        EXPECT_EQ(platform.logged(">Product type set to TV_PRODUCT"), 1U);
        EXPECT_EQ(Info::getListOfCores(), std::vector<std::string>{"TV"});
        EXPECT_TRUE(Info::isScreenRatioFitNeeded());
        EXPECT_EQ(Info::getModelString(), "T-ABHCHD");
        EXPECT_EQ(Info::getVersionString(), "1234.5");
        EXPECT_EQ(Info::getMainSoftwareVersionMajor(), 1234);
        EXPECT_EQ(Info::getMainSoftwareVersionMinor(), 5);
        EXPECT_EQ(Info::getMainSoftwareVersionDate(), "2026-01-02");
        EXPECT_EQ(Info::getSubmicomVersion(), "0.7");
        EXPECT_EQ(Info::getPartitionTxtFilePath(), "/p.txt");
        EXPECT_EQ(Info::getVarikModelString(), "T-ABHCBD");
        platform.systemInfo = {{128, "no.dash"}};
        EXPECT_THROW(Info::getModelString(), Common::Utils::GenericException);
        EXPECT_EQ(platform.logged(">getParsedModelAndVersion: Wrong string format - lack of dash: no.dash"),
                  1U);
        EXPECT_THROW(Info::getSubmicomVersion(), Platform::SystemInfoAPIInternalProblemException);
        EXPECT_FALSE(Info::isScreenRatioFitNeeded());
    });
}

TEST(ProductInfo, ZebBoxHasItsOwnSoftwareAndNoVarikFacts) {
    inProcessOf(Platform::ZEB_PRODUCT, [](FakePlatform&) {
        EXPECT_EQ(Info::getModelString(), "Z-X");
        EXPECT_EQ(Info::getMainSoftwareVersionMajor(), 70000 - 65536);
        EXPECT_EQ(Info::getMainSoftwareVersionMinor(), 0);
        EXPECT_THROW(Info::getVarikModelString(), Platform::UnproperProductException);
        EXPECT_EQ(Info::getNerixPartitionPath(), "/mnt/systemrw/org.corvan.tv.nerix/data/zeb");
    });
}

TEST(ProductInfoDeathTest, IsInitialisedOnceAndKnowsNothingBefore) {
    EXPECT_THROW(Info::getModelString(), Platform::ProductUninitializedException);
    EXPECT_THROW(Info::getSystemUsrBinPath(), Platform::ProductUninitializedException);
    EXPECT_THROW(Info::getEmulatedOTNZone(), Platform::ProductUninitializedException);
    EXPECT_TRUE(Info::checkBoardType("emulator32"));
    EXPECT_DEATH(Info::initializeProduct(Platform::UNDEFINED_PRODUCT), "ASSERTION FAILED: false, ");
    EXPECT_DEATH(Info::initializeProduct(Platform::TV_PRODUCT);
                 Info::initializeProduct(Platform::TV_PRODUCT),
                 "ASSERTION FAILED: m_productType == UNDEFINED_PRODUCT, ");
}

} // namespace
} // namespace Nerix::Tests
