#include "Platform/Product/IProductInfo.h"

#include "Common/Utils/Errors/Errors.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"

#include <gtest/gtest.h>

namespace Nerix::Tests {
namespace {

using Info = Platform::IProductInfo;

TEST(ProductInfo, TelevisionByDefault) {
    inOwnProcess([] {
        FakePlatform& platform = FakePlatform::instance();
        platform.systemInfo = {
            {128, "T-ABHCHD-66770.5"}, {8, "2026-01-02"}, {133, "0.7"}, {301, "/p.txt"}, {203, 540}};
        Info::initializeProduct(Platform::DEFAULT_PRODUCT);
        EXPECT_EQ(platform.logged(">Product type set to TV_PRODUCT"), 1U);
        EXPECT_EQ(Info::getListOfCores(), std::vector<std::string>{"TV"});
        EXPECT_TRUE(Info::isScreenRatioFitNeeded());
        EXPECT_EQ(Info::getModelString(), "T-ABHCHD");
        EXPECT_EQ(Info::getVersionString(), "66770.5");
        EXPECT_EQ(Info::getMainSoftwareVersionMajor(), 66770 - 65536);
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
