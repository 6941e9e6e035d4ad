#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "Debug/DebugAndTestParameters/ParametersArchive.h"

#include "Common/Utils/Errors.h"
#include "Platform/Product/IProductInfo.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"

#include <boost/algorithm/string/replace.hpp>
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

/// The elements and what stands between them: attributes are the library's own, and so is its notation of
/// numbers, in which those of the golden file are exact.
std::string elementsOf(std::string text) {
    const std::size_t begin = text.find("<DebugAndTestParameters");
    text = text.substr(begin, text.find("</DebugAndTestParameters>") - begin);
    text = std::regex_replace(text, std::regex("<(\\w+)( \\w+=\"\\d+\")+>"), "<$1>");
    for (const auto& [exact, shown] :
         std::vector<std::pair<const char*, const char*>>{{"2.050000000e+01", "20.5"},
                                                          {"2.150000000e+01", "21.5"},
                                                          {"3.000000000e+08", "3e+08"},
                                                          {"2.250000000e+01", "22.5"},
                                                          {"2.500000000e-01", "0.25"}}) {
        boost::algorithm::replace_all(text, exact, shown);
    }
    return text;
}

std::string written(const DebugAndTestParameters& parameters) {
    std::ostringstream stream;
    ParametersArchive::write(stream, parameters);
    return elementsOf(stream.str());
}

TEST(ParametersArchive, FilesOfOldAndNewLibrariesAreReadFieldByField) {
    std::string todays =
        replace_all_copy(golden, "\t\t\t<item_version>0</item_version>\n\t\t\t<value>", "\t\t\t<value>");
    boost::algorithm::replace_all(todays, "class_id=\"2\" tracking_level=\"0\" version=\"0\"",
                                  "class_id=\"2\" tracking_level=\"0\" version=\"1\"");
    ASSERT_NE(todays, golden);
    for (const std::string& text : {golden, replace_all_copy(todays, "version=\"12\"", "version=\"18\"")}) {
        const auto [parameters, isWhole] = readFrom(text);
        EXPECT_TRUE(isWhole);
        EXPECT_EQ(written(parameters), elementsOf(golden));
        EXPECT_EQ(parameters.getNumberOfFailures(), 4294967295U);
        EXPECT_EQ(parameters.getInstallationPerformanceParameters().getFlashStreamBufferSize().get(), 11U);
        EXPECT_FALSE(parameters.getInstallationPerformanceParameters().getFlashSinkBufferSize());
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
        parameters.save();
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
