#include "Platform/Product/EmulatedInfo.h"
#include "Platform/Product/IProductInfo.h"

#include "Common/Utils/Errors.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"

#include <boost/exception/get_error_info.hpp>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <boost/optional/optional_io.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <iterator>

namespace Nerix::Tests {
namespace {

using Info = Platform::IProductInfo;

class EmulatedInfoTest : public testing::Test {
protected:
    static void inDevice(const std::function<void()>& body) {
        withOwnMnt([&] {
            Info::initializeProduct(Platform::TV_PRODUCT);
            boost::filesystem::create_directories("/mnt/systemrw/org.corvan.tv.nerix/data");
            body();
        });
    }

    static void write(const std::string& content) {
        boost::filesystem::create_directories(
            boost::filesystem::path(Info::getEmulatedInfoPath()).parent_path());
        boost::filesystem::ofstream(Info::getEmulatedInfoPath()) << content;
    }
    static std::string content() {
        boost::filesystem::ifstream file(Info::getEmulatedInfoPath());
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static std::string failureOf(const std::function<void()>& operation) {
        using namespace Common::Utils; // NOLINT(google-build-using-namespace)
        try {
            operation();
            return "none";
        } catch (const GenericException& exception) {
            const auto* const description = boost::get_error_info<errinfo_description>(exception);
            return description != nullptr ? *description : *boost::get_error_info<errinfo_string>(exception);
        }
    }
};

TEST_F(EmulatedInfoTest, WithoutAFileNothingIsKnownAndNothingMade) {
    inDevice([] {
        EXPECT_FALSE(Info::getEmulatedModelString());
        EXPECT_FALSE(Info::getEmulatedMainSoftwareVersionMajor());
        EXPECT_FALSE(Info::getEmulatedVersionString());
        EXPECT_FALSE(Info::getEmulatedOTNZone());
        EXPECT_FALSE(Info::getEmulatedPartitionTxtFilePath());
        EXPECT_FALSE(boost::filesystem::exists(Info::getNerixPartitionPath()));
        EXPECT_EQ(FakePlatform::instance().logHolding(">Version Major NOT set").size(), 1U);
    });
}

TEST_F(EmulatedInfoTest, EntriesComeBackAndMoveToTheEnd) {
    inDevice([] {
        Info::setEmulatedMainSoftwareVersionMajor(7);
        Info::setEmulatedMainSoftwareVersionMinor(65535);
        Info::setEmulatedModelString("M H");
        Info::setEmulatedMainSoftwareVersionDate("2016-01-01");
        Info::setEmulatedOTNZone('E');
        Info::setEmulatedMainSoftwareVersionMajor(8);
        EXPECT_EQ(content(),
                  "VersionMinor:65535\nModelString:M H\nDate:2016-01-01\nOTNZone:E\nVersionMajor:8\n");
        EXPECT_EQ(Info::getEmulatedVersionString(), std::string("8.65535"));
        EXPECT_EQ(Info::getEmulatedMainSoftwareVersionMinor(), std::uint16_t{65535});
        EXPECT_EQ(Info::getEmulatedOTNZone(), 'E');
        EXPECT_FALSE(boost::filesystem::exists(Info::getNerixPartitionPath() + "/helper.txt"));
        Info::removeEmulationInfo();
        EXPECT_FALSE(Info::getEmulatedModelString());
    });
}

TEST_F(EmulatedInfoTest, ForeignTextIsReadAsFarAsItIsGood) {
    inDevice([] {
        std::string lines = "Date:2016-01-01:extra\nVersionMajor:-1\nOTNZone:EU\n";
        for (int i = 0; i < 1'000'000; ++i) {
            lines += "k:v\n";
        }
        write(lines + "Submicom:1\nSubmicom:2");
        EXPECT_EQ(Info::getEmulatedMainSoftwareVersionDate(), std::string("2016-01-01"));
        EXPECT_EQ(Info::getEmulatedSubmicomVersion(), std::string("1"));
        EXPECT_THROW(Info::getEmulatedMainSoftwareVersionMajor(), boost::bad_lexical_cast);
        EXPECT_THROW(Info::getEmulatedOTNZone(), boost::bad_lexical_cast);
        EXPECT_EQ(failureOf([] { Info::getEmulatedModelString(); }),
                  "Requested key doesn't exist in EmulatedInfo.txt. Key: ModelString");
        Info::setEmulatedModelString("m");
        EXPECT_EQ(content().substr(0, 16), "Date:2016-01-01\n");
    });
}

TEST_F(EmulatedInfoTest, BadLinesFailAndLoseNothing) {
    inDevice([] {
        for (const auto& [bad, failure] : std::vector<std::pair<std::string, std::string>>{
                 {":value\n", "Failed getting emulatedInfoKey."},
                 {"\n", "Failed getting emulatedInfoKey."},
                 {"Key:\n", "Failed getting emulatedInfoValue."},
                 {"Key\n", "Failed getting emulatedInfoValue."},
                 {"Key::x\n", "Failed getting emulatedInfoValue."}}) {
            SCOPED_TRACE(bad);
            write("A:1\n" + bad + "ModelString:m\n");
            EXPECT_EQ(failureOf([] { Info::getEmulatedModelString(); }), failure);
            EXPECT_EQ(failureOf([] { Info::setEmulatedModelString("n"); }), failure);
            EXPECT_EQ(content(), "A:1\n" + bad + "ModelString:m\n");
        }
        write("A:1\n");
        for (const char* const value : {"", "two\nlines", "a:b"}) {
            EXPECT_EQ(failureOf([&] { Info::setEmulatedModelString(value); }),
                      "Failed getting emulatedInfoValue.");
        }
        EXPECT_EQ(content(), "A:1\n");
    });
}

} // namespace
} // namespace Nerix::Tests
