#include "Platform/Product/IProductInfo.h"

#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/optional/optional_io.hpp>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>

#include <sys/resource.h>

namespace Nerix::Tests {
namespace {

using Info = Platform::IProductInfo;

void expectFailure(const std::string& text, const std::function<void()>& operation) {
    const std::string report = reportOf(operation);
    EXPECT_TRUE(has(report, "] = " + text + "\n")) << text << " in " << report;
}

void inDevice(const std::function<void(const boost::filesystem::path& file)>& body) {
    withOwnMnt([&] {
        Info::initializeProduct(Platform::TV_PRODUCT);
        const boost::filesystem::path file = Info::getEmulatedInfoPath();
        EXPECT_FALSE(Info::getEmulatedModelString()) << "no file";
        EXPECT_EQ(FakePlatform::instance().logged(">emulated info file " + file.native() + " does not exist"), 1U);
        EXPECT_EQ(FakePlatform::instance().logged(" should be used only in Debug mode"), 1U);
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
            Info::setEmulatedMainSoftwareVersionDate("2016-01-01");
            Info::setEmulatedOTNZone('E');
            Info::setEmulatedMainSoftwareVersionMajor(8);
            EXPECT_EQ(contentOf(file), "VersionMinor:65535\nModelString:M H\nDate:2016-01-01\nOTNZone:E\nVersionMajor:8\n");
            EXPECT_EQ(Info::getEmulatedVersionString().get() + Info::getEmulatedOTNZone().get(), "8.65535E");
            EXPECT_EQ(Info::getEmulatedMainSoftwareVersionMinor().get(), 65535);
            boost::filesystem::ofstream(file)
                << "PartitionTxtFilePath:/p\nSubmicom:0.7\nServiceID:q\nVersionMajor:65536\nVersionMinor:-1\n";
            EXPECT_EQ(Info::getEmulatedPartitionTxtFilePath(), boost::filesystem::path("/p"));
            EXPECT_EQ(Info::getEmulatedSubmicomVersion().get() + Info::getEmulatedQorlServiceID().get(), "0.7q");
            EXPECT_TRUE(has(reportOf([] { Info::getEmulatedMainSoftwareVersionMajor(); }), "bad_lexical_cast"));
            EXPECT_TRUE(has(reportOf([] { Info::getEmulatedMainSoftwareVersionMinor(); }), "bad_lexical_cast"));
            Info::removeEmulationInfo();
            EXPECT_FALSE(Info::getEmulatedVersionString());
            EXPECT_EQ(FakePlatform::instance().logged("[WRN] ProductEmulation.cpp:"), 1U);
        });
}

TEST(EmulatedInfo, BadLinesFailAndLoseNothing) {
    inDevice([](const boost::filesystem::path& file) {
        const std::string noKey = "Failed getting emulatedInfoKey.";
        const std::string noValue = "Failed getting emulatedInfoValue.";
        for (const auto& [bad, failure] : std::vector<std::pair<std::string, std::string>>{
                 {":value", noKey}, {"", noKey}, {"Key:", noValue}, {"Key", noValue}, {"Key::x", noValue}}) {
            const std::string content = "A:1\n" + bad + "\nModelString:m\n";
            boost::filesystem::ofstream(file) << content;
            expectFailure(failure, [] { Info::getEmulatedModelString(); });
            expectFailure(failure, [] { Info::setEmulatedModelString("n"); });
            EXPECT_EQ(contentOf(file), content) << bad;
        }
        boost::filesystem::ofstream(file) << "A:1\n";
        for (const char* const value : {"", "two\nlines"}) {
            expectFailure("Can't store an empty text, or one with a line break, in EmulatedInfo.txt.",
                          [&] { Info::setEmulatedModelString(value); });
        }
        EXPECT_EQ(contentOf(file), "A:1\n");
        Info::setEmulatedMainSoftwareVersionDate("2016-01-01:extra");
        EXPECT_EQ(Info::getEmulatedMainSoftwareVersionDate(), std::string("2016-01-01"));
        Info::setEmulatedOTNZone(':');
        EXPECT_EQ(contentOf(file), "A:1\nDate:2016-01-01\nOTNZone::\n");
        boost::filesystem::ofstream(file) << "A:1\n";
        expectFailure("Requested key doesn't exist in EmulatedInfo.txt. Key: Submicom",
                      [] { Info::getEmulatedSubmicomVersion(); });
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit little{8, RLIM_INFINITY};
        ::setrlimit(RLIMIT_FSIZE, &little);
        expectFailure("Couldn't write file.", [] { Info::setEmulatedModelString("n"); });
        EXPECT_EQ(contentOf(file), "A:1\n");
        boost::filesystem::remove(file);
        boost::filesystem::create_directory(file);
        expectFailure("Opening EmulatedInfo.txt failed.", [] { Info::getEmulatedModelString(); });
        expectFailure("Couldn't open file.", [] { Info::setEmulatedModelString("n"); });
    });
}

} // namespace
} // namespace Nerix::Tests
