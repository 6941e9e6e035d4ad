#include "Platform/Product/EmulatedInfo.h"
#include "Platform/Product/IProductInfo.h"

#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/PlatformKeys.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/optional/optional_io.hpp>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>

#include <sys/resource.h>
#include <sys/stat.h>

namespace Nerix::Tests {
namespace {

using Info = Platform::IProductInfo;

TEST(ProductInfo, TelevisionByDefault) {
    inOwnProcess([] {
        FakePlatform& platform = FakePlatform::instance();
        platform.systemInfo = {{TV_SOFTWARE, "T-ABHCHD-66770.5"}, {SOFTWARE_DATE, "2026-01-02"}, {SUBMICOM_VERSION, "0.7"}};
        platform.systemInfo.insert({{PARTITION_LIST, "/p.txt"}, {SCREEN_LINES, 540}});
        Info::initializeProduct(static_cast<Platform::ProductType>(3)); // by number, as callers outside this package pass it
        EXPECT_EQ(Info::getDeviceType(), Platform::TV_PRODUCT);
        EXPECT_EQ(Info::getMasterDeviceType(), Platform::TV_PRODUCT);
        EXPECT_EQ(Info::getListOfVerifiers(), std::vector<std::string>{"TV"});
        EXPECT_TRUE(Info::isMasterDevice());
        EXPECT_TRUE(Info::isScreenRatioFitNeeded());
        EXPECT_FALSE(Info::isSecondDeviceConnected());
        EXPECT_FALSE(Info::isGuestCore());
        EXPECT_EQ(Info::getModelString(), "T-ABHCHD");
        EXPECT_EQ(Info::getVersionString(), "66770.5");
        EXPECT_EQ(Info::getMainSoftwareVersionMajor(), 66770 - 65536);
        EXPECT_EQ(Info::getMainSoftwareVersionMinor(), 5);
        EXPECT_EQ(Info::getMainSoftwareVersionDate(), "2026-01-02");
        EXPECT_EQ(Info::getSubmicomVersion(), "0.7");
        EXPECT_EQ(Info::getPartitionTxtFilePath(), "/p.txt");
        EXPECT_EQ(Info::getVarikModelString(), "T-ABHCBD");
        EXPECT_EQ(Info::getVarikSoftwareVersionDate(), "0000-00-00");
        EXPECT_EQ(Info::getVarikSoftwareVersionMajor(), 1000);
        EXPECT_EQ(Info::getVarikSoftwareVersionMinor(), 0);
        for (const char* const record :
             {">Product type set to TV_PRODUCT", ">Product was build for emulator32",
              ">Flag m_isZebConnected is set to false", ">Model string: T-ABHCHD.", ">Version string: 66770.5.",
              ">MAJOR SW VERSION: 1234", ">MINOR SW VERSION: 5", ">Partition.txt file path is: /p.txt"}) {
            EXPECT_GE(platform.countLogged(record), 1U) << record;
        }
    });
}

TEST(ProductInfo, FactsThatCannotBeReadThrowAndAreLogged) {
    inOwnProcess([] {
        FakePlatform& platform = FakePlatform::instance();
        platform.systemInfo = {{TV_SOFTWARE, "no.dash"}};
        Info::initializeProduct(Platform::TV_PRODUCT);
        const std::pair<std::function<void()>, std::string> failures[] = {
            {[] { Info::getModelString(); }, "getParsedModelAndVersion: Wrong string format - lack of dash"},
            {[] { Info::getVersionString(); }, "getVersionString: Wrong string format - lack of dash"},
            {[] { Info::getMainSoftwareVersionDate(); }, "Unable to read SW version from system-info"},
            {[] { Info::getSubmicomVersion(); }, "Unable to read SW version from system-info"},
            {[] { Info::getPartitionTxtFilePath(); }, "Unable to read partition file path from system-info"},
            {[] { Info::isGenuineTV(); }, "Unable to get product type configuration - TV"},
            {[] { Info::isGenuineZeb(); }, "Unable to get product type configuration - Zeb"},
        };
        for (const auto& [operation, failure] : failures) {
            SCOPED_TRACE(failure);
            const std::string report = diagnosticsOf(operation);
            EXPECT_PRED2(contains, report, "] = " + failure + "\n");
            EXPECT_FALSE(contains(report, "Throw in function Answer ")) << report;
            EXPECT_GE(platform.countLogged(">" + failure), 1U);
        }
        EXPECT_EQ(platform.countLogged(" - lack of dash: no.dash"), 2U);
        EXPECT_PRED2(contains, diagnosticsOf(failures[0].first), "tag_errinfo_string*] = no.dash\n");
        EXPECT_PRED2(contains, diagnosticsOf([] { Info::getVarikModelFromCorvanModel("ABC"); }),
                     "] = Can't figure out Varik model string. Corvan model string does not have 'H': ABC\n");
        EXPECT_FALSE(Info::isScreenRatioFitNeeded());
        EXPECT_EQ(platform.countLogged("[ERR] ProductIdentity.cpp:"), 1U);
    });
}

TEST(ProductInfo, PathsAreJoinedFromTheirParts) {
    for (const bool isTV : {true, false}) {
        inOwnProcess([isTV] {
            FakePlatform& platform = FakePlatform::instance();
            platform.pathVariables = {{SYSTEM_BINARIES, "/bin"}, {READ_ONLY_APPS, "/roapps"}, {SHARED_DATA, "/share"}};
            platform.pathVariables.insert({{APPS, "/apps"}, {USB_DRIVES, "/usb"}});
            Info::initializeProduct(isTV ? Platform::TV_PRODUCT : Platform::ZEB_PRODUCT);
            const std::string data = std::string("/org.corvan.tv.nerix/data/") + (isTV ? "tv" : "zeb");
            const std::string partition = "/mnt/systemrw" + data;
            EXPECT_EQ(Info::getFlashDeviceRootPath(), "");
            EXPECT_EQ(Info::getNerixPartitionPath(), partition);
            EXPECT_EQ(Info::getNerixBigTempPath(), "/apps" + data);
            EXPECT_EQ(Info::getFileSystemRootPath(), "");
            EXPECT_EQ(Info::getMBUPartitionMountPath(), partition + "/mbu_mount_point");
            EXPECT_EQ(Info::getUSBMountPath(), "/usb");
            EXPECT_EQ(Info::getLastSearchingDateFilePath(), partition + "/LastSearchingDate");
            EXPECT_EQ(Info::getNerixFactoryResetFlagPath(), partition + "/NerixFactoryResetFlag");
            EXPECT_EQ(Info::getNerixFinalizingUpgradeFlagPath(), partition + "/NerixFinalizingUpgradeFlag");
            EXPECT_EQ(Info::getEmulatedInfoPath(), partition + "/EmulatedInfo.txt");
            EXPECT_EQ(Info::getLastPluginFailureFlagFilePath(), partition + "/plugin_failure_flags");
            EXPECT_EQ(Info::getKrafsScriptsDirectory(), "/roapps/org.corvan.tv.nerix");
            EXPECT_EQ(Info::getLibraryKeyPath(), "/share/org.corvan.tv.nerix/libnerixprodkeys.so");
            EXPECT_EQ(Info::getUpdateInfoFilePath(), partition + "/UpdateInfo.xml");
            EXPECT_EQ(Info::getKPIDescriptionFilePath(), "/mnt/systemrw/org.corvan.tv.nerix/datakpi");
            EXPECT_EQ(Info::getSystemUsrAppsROPath().native(), "/roapps");
            EXPECT_EQ(Info::getSystemUsrBinPath().native(), "/bin");
            EXPECT_EQ(Info::getBackupPath().native(), "/mnt/backup");
            EXPECT_EQ(Info::getNerixBigTempStorageMaxSize(), 943718400U);
            EXPECT_EQ(Info::getNerixSmallTempStorageMaxSize(), 10485760U);
            platform.reset();
            EXPECT_EQ(Info::getSystemUsrBinPath(), "");
            EXPECT_EQ(platform.countLogged(">The platform has no directory for path variable 6"), 1U);
        });
    }
}

TEST(ProductInfo, ZebBoxHasItsOwnSoftwareAndNoVarikFacts) {
    inOwnProcess([] {
        FakePlatform& platform = FakePlatform::instance();
        platform.systemInfo = {{TV_SOFTWARE, "T-TVH-1.2"}, {ZEB_BOX_SOFTWARE, "Z-BOXH-3"}, {SCREEN_LINES, 1080}};
        platform.systemInfo.insert({{IS_TV, false}, {IS_ZEB_BOX, true}});
        Info::initializeProduct(Platform::ZEB_PRODUCT);
        EXPECT_EQ(platform.countLogged(">Product type set to ZEB_PRODUCT"), 1U);
        EXPECT_EQ(Info::getDeviceType(), Platform::ZEB_PRODUCT);
        EXPECT_EQ(Info::getModelString(), "Z-BOXH");
        EXPECT_EQ(Info::getMainSoftwareVersionMinor(), 0);
        EXPECT_TRUE(Info::isGenuineZeb());
        EXPECT_FALSE(Info::isGenuineTV());
        EXPECT_FALSE(Info::isScreenRatioFitNeeded());
        platform.systemInfo[SCREEN_LINES] = 480;
        EXPECT_FALSE(Info::isScreenRatioFitNeeded());
        EXPECT_THROW(Info::getVarikModelString(), Platform::UnproperProductException);
        EXPECT_THROW(Info::getVarikSoftwareVersionDate(), Platform::UnproperProductException);
        EXPECT_THROW(Info::getVarikSoftwareVersionMajor(), Platform::UnproperProductException);
        EXPECT_THROW(Info::getVarikSoftwareVersionMinor(), Platform::UnproperProductException);
    });
}

TEST(ProductInfoDeathTest, LookupsBeforeInitialisationThrow) {
    EXPECT_THROW(Info::getModelString(), Platform::ProductUninitializedException);
    EXPECT_THROW(Info::getMainSoftwareVersionDate(), Platform::ProductUninitializedException);
    EXPECT_THROW(Info::getSubmicomVersion(), Platform::ProductUninitializedException);
    EXPECT_THROW(Info::getPartitionTxtFilePath(), Platform::ProductUninitializedException);
    EXPECT_THROW(Info::getSystemUsrBinPath(), Platform::ProductUninitializedException);
    EXPECT_EQ(FakePlatform::instance().countLogged("The platform has no directory"), 0U);
    EXPECT_THROW(Info::getEmulatedOTNZone(), Platform::ProductUninitializedException);
}

TEST(ProductInfoDeathTest, BoardAndCoreNamesNeedNoInitialisation) {
    EXPECT_TRUE(Info::checkBoardType("emulator32"));
    EXPECT_FALSE(Info::checkBoardType("Emulator32"));
    EXPECT_FALSE(Info::isPreCorvanBoard());
    EXPECT_EQ(Info::getCoreName(Platform::TV_PRODUCT), "TV");
    EXPECT_EQ(Info::getCoreName(Platform::ZEB_PRODUCT), "Zeb");
    EXPECT_DEATH(Info::getCoreName(Platform::UNDEFINED_PRODUCT), "ASSERTION FAILED: type == TV_PRODUCT");
}

TEST(ProductInfoDeathTest, InitialisationWithoutAProductOrForTheSecondTimeAborts) {
    EXPECT_DEATH(Info::initializeProduct(Platform::UNDEFINED_PRODUCT), "ASSERTION FAILED: false, ");
    EXPECT_DEATH(Info::initializeProduct(Platform::TV_PRODUCT);
                 Info::initializeProduct(Platform::TV_PRODUCT), "ASSERTION FAILED: m_productType == UNDEFINED_PRODUCT, ");
}

void expectFailure(const std::string& text, const std::function<void()>& operation) {
    const std::string report = diagnosticsOf(operation);
    EXPECT_PRED2(contains, report, "] = " + text + "\n") << text << " in " << report;
}

void inDevice(const std::function<void(const boost::filesystem::path& file)>& body) {
    withOwnMnt([&] {
        Info::initializeProduct(Platform::TV_PRODUCT);
        const boost::filesystem::path file = Info::getEmulatedInfoPath();
        FakePlatform::instance().reset();
        EXPECT_FALSE(Info::getEmulatedModelString()) << "there is no file yet";
        EXPECT_EQ(FakePlatform::instance().countLogged(">emulated info file " + file.native() + " does not exist"), 1U);
        EXPECT_EQ(FakePlatform::instance().countLogged(" should be used only in Debug mode"), 1U);
        expectFailure("File doesn't exist.", [] { Info::setEmulatedModelString("m"); });
        boost::filesystem::create_directories(file.parent_path());
        body(file);
    });
}

TEST(EmulatedInfo, EntriesComeBackAndMoveToTheEnd) {
    inDevice(
        [](const boost::filesystem::path& file) {
            Info::setEmulatedMainSoftwareVersionMajor(7);
            Info::setEmulatedMainSoftwareVersionMinor(65535);
            Info::setEmulatedModelString("M H");
            Info::setEmulatedMainSoftwareVersionDate("2016-01-01:extra"); // a second colon ends the value
            Info::setEmulatedOTNZone('E');
            Info::setEmulatedMainSoftwareVersionMajor(8);
            EXPECT_EQ(contentOf(file), "VersionMinor:65535\nModelString:M H\nDate:2016-01-01\nOTNZone:E\nVersionMajor:8\n");
            EXPECT_EQ(Info::getEmulatedVersionString().get(), "8.65535");
            EXPECT_EQ(Info::getEmulatedOTNZone().get(), 'E');
            EXPECT_EQ(Info::getEmulatedMainSoftwareVersionMinor().get(), 65535);
            boost::filesystem::ofstream(file)
                << "PartitionTxtFilePath:/p\nSubmicom:0.7\nServiceID:q\nVersionMajor:65536\nVersionMinor:-1\n";
            EXPECT_EQ(Info::getEmulatedPartitionTxtFilePath(), boost::filesystem::path("/p"));
            EXPECT_EQ(Info::getEmulatedSubmicomVersion().get(), "0.7");
            EXPECT_EQ(Info::getEmulatedQorlServiceID().get(), "q");
            EXPECT_PRED2(contains, diagnosticsOf([] { Info::getEmulatedMainSoftwareVersionMajor(); }), "bad_lexical_cast");
            EXPECT_PRED2(contains, diagnosticsOf([] { Info::getEmulatedMainSoftwareVersionMinor(); }), "bad_lexical_cast");
            Info::removeEmulationInfo();
            EXPECT_FALSE(Info::getEmulatedVersionString());
            EXPECT_EQ(FakePlatform::instance().countLogged("[WRN] ProductEmulation.cpp:"), 1U);
        });
}

TEST(EmulatedInfo, TextsThatCouldNotBeReadBackAreRejectedAndNoFileIsMade) {
    inDevice([](const boost::filesystem::path& file) {
        const std::string noEntry = "Can't store an empty text, or one with a line break, in EmulatedInfo.txt.";
        const std::string noKey = "Can't store a key with a colon in EmulatedInfo.txt.";
        const std::string noValue = "Can't store a value that begins with a colon in EmulatedInfo.txt.";
        expectFailure(noEntry, [] { Info::setEmulatedModelString(""); });
        expectFailure(noEntry, [] { Info::setEmulatedModelString("two\nlines"); });
        expectFailure(noEntry, [] { Platform::setEmulatedInfoValue("", "value"); });
        expectFailure(noKey, [] { Platform::setEmulatedInfoValue("a:b", "value"); });
        expectFailure(noValue, [] { Info::setEmulatedModelString(":value"); });
        expectFailure(noValue, [] { Info::setEmulatedOTNZone(':'); });
        EXPECT_FALSE(boost::filesystem::exists(file));
    });
}

TEST(EmulatedInfo, MalformedFileIsRejectedAndLeftUnchanged) {
    inDevice([](const boost::filesystem::path& file) {
        const std::string noKey = "Failed getting emulatedInfoKey.";
        const std::string noValue = "Failed getting emulatedInfoValue.";
        for (const auto& [bad, failure] : std::vector<std::pair<std::string, std::string>>{
                 {":value", noKey}, {"", noKey}, {"Key:", noValue}, {"Key", noValue}, {"Key::x", noValue}}) {
            SCOPED_TRACE("line '" + bad + "'");
            const std::string content = "A:1\n" + bad + "\nModelString:m\n";
            boost::filesystem::ofstream(file) << content;
            expectFailure(failure, [] { Info::getEmulatedModelString(); });
            expectFailure(failure, [] { Info::setEmulatedModelString("n"); });
            EXPECT_EQ(contentOf(file), content);
        }
    });
}

TEST(EmulatedInfo, FailuresOfTheFileNameTheOperation) {
    inDevice([](const boost::filesystem::path& file) {
        boost::filesystem::ofstream(file) << "A:1\n";
        expectFailure("Requested key doesn't exist in EmulatedInfo.txt. Key: Submicom",
                      [] { Info::getEmulatedSubmicomVersion(); });
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit little{8, RLIM_INFINITY};
        ::setrlimit(RLIMIT_FSIZE, &little);
        expectFailure("Couldn't write file.", [] { Info::setEmulatedModelString("n"); });
        EXPECT_EQ(contentOf(file), "A:1\n");
        boost::filesystem::remove(file.parent_path() / "helper.txt");
        ::mkfifo((file.parent_path() / "helper.txt").c_str(), 0600);
        expectFailure("Couldn't open file.", [] { Info::setEmulatedModelString("n"); });
        boost::filesystem::remove(file);
        boost::filesystem::create_directory(file);
        expectFailure("Opening EmulatedInfo.txt failed.", [] { Info::getEmulatedModelString(); });
        expectFailure("Couldn't open file.", [] { Info::setEmulatedModelString("n"); });
    });
}

} // namespace
} // namespace Nerix::Tests
