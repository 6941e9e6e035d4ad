#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "Debug/DebugAndTestParameters/ParametersArchive.h"

#include "Common/Utils/Errors/Errors.h"
#include "Platform/Product/IProductInfo.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"

#include <boost/algorithm/string/replace.hpp>
#include <boost/archive/basic_archive.hpp>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <gtest/gtest.h>

#include <exception>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>

namespace Nerix::Tests {
namespace {

using boost::algorithm::replace_all_copy;
using Common::DebugAndTestParameters;

/// As an older library wrote it; every field differs from its default.
const std::string golden = [] {
    std::ifstream file(NERIX_GOLDEN_PARAMETERS);
    return std::string(std::istreambuf_iterator<char>(file), {});
}();

/// What could be read, and whether that was everything.
std::pair<DebugAndTestParameters, bool> readFrom(const std::string& text) {
    DebugAndTestParameters parameters;
    std::istringstream stream(text);
    try {
        ParametersArchive::read(stream, parameters);
        return {parameters, true};
    } catch (const std::exception&) {
        return {parameters, false};
    }
}

std::string written(const DebugAndTestParameters& parameters) {
    std::ostringstream stream;
    ParametersArchive::write(stream, parameters);
    return stream.str();
}

/// The text as today's library would write it, whose archives have a version of their own.
std::string withTodaysVersion(const std::string& text) {
    const boost::archive::library_version_type library = boost::archive::BOOST_ARCHIVE_VERSION();
    const std::string version = std::to_string(static_cast<std::uint_least16_t>(library));
    return replace_all_copy(text, "archive\" version=\"11\"", "archive\" version=\"" + version + "\"");
}

TEST(ParametersArchive, FilesOfOldAndNewLibrariesAreReadFieldByField) {
    const std::string itemVersion = "\t\t\t<item_version>0</item_version>\n";
    // Blanks inside the tags, and the layout of today's library, which counts both classes of optional
    // values anew.
    const std::string blanks =
        replace_all_copy(replace_all_copy(golden, "<value>", "<value >"), "</count>", "</count\n>");
    const std::string todays =
        std::regex_replace(withTodaysVersion(replace_all_copy(golden, itemVersion, "")),
                           std::regex("(class_id=\"[23]\" tracking_level=\"0\" version=)\"0\""), "$1\"1\"");
    for (const std::string& text : {golden, blanks, todays}) {
        const auto [parameters, isWhole] = readFrom(text);
        EXPECT_TRUE(isWhole);
        EXPECT_EQ(written(parameters), withTodaysVersion(golden));
        EXPECT_EQ(parameters.getNumberOfFailures(), 4294967295U);
        EXPECT_EQ(parameters.getInstallationPerformanceParameters().getFlashStreamBufferSize().get(), 11U);
        EXPECT_FALSE(parameters.getInstallationPerformanceParameters().getFlashSinkBufferSize());
    }
    const std::string optionalClass = "class_id=\"2\" tracking_level=\"0\" version=";
    for (const std::string& mixed :
         {replace_all_copy(golden, itemVersion, ""),
          replace_all_copy(golden, optionalClass + "\"0\"", optionalClass + "\"1\""),
          replace_all_copy(todays, optionalClass + "\"1\"", optionalClass + "\"2\""),
          replace_all_copy(golden, "noRebootFlag>", "noRebootFlags>")}) {
        ASSERT_NE(mixed, golden);
        EXPECT_FALSE(readFrom(mixed).second);
    }
}

TEST(ParametersArchive, DamagedFilesFailAndKeepWhatWasRead) {
    const std::size_t end = golden.find("</boost_serialization>") + 20;
    const std::size_t flagRead = golden.find("<skipCompatibilityChecker>");
    for (std::size_t length = 0; length < end; length += 7) {
        const auto [parameters, isWhole] = readFrom(golden.substr(0, length));
        ASSERT_FALSE(isWhole) << length;
        ASSERT_TRUE(parameters.isNoRebootFlag() || length < flagRead) << length;
    }
}

TEST(DebugAndTestParameters, FileIsReadWrittenAndItsFaultsLogged) {
    withOwnMnt([] {
        Platform::IProductInfo::initializeProduct(Platform::TV_PRODUCT);
        EXPECT_THROW(Common::getDebugAndTestParameters(), Common::Utils::GenericException);
        DebugAndTestParameters::loadDebugAndTestParameters("test");
        Common::loadDebugAndTestParameters("again");
        DebugAndTestParameters& parameters = Common::getDebugAndTestParameters();
        EXPECT_EQ(parameters.getNumberOfFailures(), 0U);
        EXPECT_TRUE(parameters.getCustomIntParam("testParam1") == 1);
        EXPECT_TRUE(parameters.getCustomBoolParam("unset", true));

        const boost::filesystem::path path = DebugAndTestParameters::getConfigFilePath();
        EXPECT_EQ(path, "/mnt/systemrw/org.corvan.tv.nerix/data/tv/DebugAndTestParameters.xml");
        boost::filesystem::create_directories(path.parent_path());
        boost::filesystem::ofstream(path) << golden;
        EXPECT_TRUE(parameters.reload());
        parameters.setPanelServiceName("saved");
        boost::filesystem::permissions(path, boost::filesystem::owner_read | boost::filesystem::owner_write);
        boost::filesystem::create_hard_link(path, path.parent_path() / "link");
        parameters.save();
        EXPECT_EQ(boost::filesystem::status(path).permissions(), 0600);
        EXPECT_EQ(boost::filesystem::hard_link_count(path), 2U) << "written into, not replaced";
        parameters.setPanelServiceName("forgotten");
        EXPECT_TRUE(parameters.reload());
        EXPECT_EQ(parameters.getPanelServiceName(), "saved");

        std::string huge;
        huge.resize(100'000'000, 'x');
        boost::filesystem::ofstream(path) << huge;
        EXPECT_FALSE(parameters.reload());
        boost::filesystem::remove(path);
        boost::filesystem::create_directory(path);
        parameters.save();
        EXPECT_EQ(parameters.getPanelServiceName(), "saved");
        for (const char* const record :
             {">Failed to open DebugAndTestParameters from /mnt/",
              ">DebugAndTestParameters were already loaded.", "parameter unset: parameter not set.",
              ">Failed to load DebugAndTestParameters from ", ">Failed to save DebugAndTestParameters to "}) {
            EXPECT_EQ(FakePlatform::instance().logged(record), 1U) << record;
        }
    });
}

} // namespace
} // namespace Nerix::Tests
