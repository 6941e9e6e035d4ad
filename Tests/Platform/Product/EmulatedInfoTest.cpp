#include "Platform/Product/IProductInfo.h"

#include "Common/Utils/Errors/Errors.h"
#include "Tests/Fakes/OwnProcess.h"

#include <boost/exception/get_error_info.hpp>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <boost/optional/optional_io.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <iterator>

namespace Nerix::Tests {
namespace {

using Info = Platform::IProductInfo;

void inDevice(const std::function<void(const boost::filesystem::path& file)>& body) {
    withOwnMnt([&] {
        Info::initializeProduct(Platform::TV_PRODUCT);
        const boost::filesystem::path file = Info::getEmulatedInfoPath();
        EXPECT_FALSE(Info::getEmulatedModelString()) << "no file";
        EXPECT_FALSE(boost::filesystem::exists(file.parent_path())) << "asking makes none";
        boost::filesystem::create_directories(file.parent_path());
        body(file);
    });
}

std::string contentOf(const boost::filesystem::path& path) {
    boost::filesystem::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string failureOf(const std::function<void()>& operation) {
    using namespace Common::Utils; // NOLINT(google-build-using-namespace): its names fill this test
    try {
        operation();
        return "none";
    } catch (const GenericException& exception) {
        const auto* const description = boost::get_error_info<errinfo_description>(exception);
        return description != nullptr ? *description : *boost::get_error_info<errinfo_string>(exception);
    }
}

TEST(EmulatedInfo, EntriesComeBackAndMoveToTheEnd) {
    inDevice([](const boost::filesystem::path& file) {
        Info::setEmulatedMainSoftwareVersionMajor(7);
        Info::setEmulatedMainSoftwareVersionMinor(65535);
        Info::setEmulatedModelString("M H");
        Info::setEmulatedMainSoftwareVersionDate("2016-01-01");
        Info::setEmulatedOTNZone('E');
        Info::setEmulatedMainSoftwareVersionMajor(8);
        EXPECT_EQ(contentOf(file),
                  "VersionMinor:65535\nModelString:M H\nDate:2016-01-01\nOTNZone:E\nVersionMajor:8\n");
        EXPECT_EQ(Info::getEmulatedVersionString(), std::string("8.65535"));
        EXPECT_EQ(Info::getEmulatedOTNZone(), 'E');
        Info::removeEmulationInfo();
        EXPECT_FALSE(Info::getEmulatedModelString());
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
            EXPECT_EQ(failureOf([] { Info::getEmulatedModelString(); }), failure) << bad;
            EXPECT_EQ(failureOf([] { Info::setEmulatedModelString("n"); }), failure) << bad;
            EXPECT_EQ(contentOf(file), content);
        }
        boost::filesystem::ofstream(file) << "A:1\n";
        for (const char* const value : {"", "two\nlines"}) {
            EXPECT_EQ(failureOf([&] { Info::setEmulatedModelString(value); }),
                      "Can't store an empty text, or one with a line break, in EmulatedInfo.txt.")
                << value;
        }
        EXPECT_EQ(contentOf(file), "A:1\n");
        Info::setEmulatedMainSoftwareVersionDate("2016-01-01:extra");
        EXPECT_EQ(Info::getEmulatedMainSoftwareVersionDate(), std::string("2016-01-01"));
        Info::setEmulatedOTNZone(':');
        EXPECT_EQ(contentOf(file), "A:1\nDate:2016-01-01\nOTNZone::\n");
    });
}

} // namespace
} // namespace Nerix::Tests
