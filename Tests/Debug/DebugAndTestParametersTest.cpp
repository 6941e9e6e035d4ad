#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "Debug/DebugAndTestParameters/ParametersArchive.h"

#include "Common/Utils/Errors.h"
#include "Platform/Product/IProductInfo.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"

#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <gtest/gtest.h>

#include <exception>
#include <fstream>
#include <functional>
#include <iterator>
#include <regex>
#include <sstream>

namespace Nerix::Tests {
namespace {

using Common::DebugAndTestParameters;

/// As an older library wrote it; every field differs from its default.
const std::string golden = [] {
    std::ifstream file(NERIX_GOLDEN_PARAMETERS);
    return std::string(std::istreambuf_iterator<char>(file), {});
}();

template <class Parameters>
Parameters fromText(const std::string& text) {
    Parameters parameters;
    std::istringstream stream(text);
    ParametersArchive::read(stream, parameters);
    return parameters;
}

template <class Parameters>
std::string toText(const Parameters& parameters) {
    std::ostringstream stream;
    ParametersArchive::write(stream, parameters);
    return stream.str();
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
        text.replace(at, what.size(), with);
    }
    return text;
}

/// Everything of the form that is not free for the library to choose: the elements and what stands between
/// them.
std::string withoutAttributes(const std::string& text) {
    const std::size_t begin = text.find("<DebugAndTestParameters");
    const std::string object = text.substr(begin, text.find("</DebugAndTestParameters>") - begin);
    return std::regex_replace(object, std::regex("<(\\w+)( \\w+=\"\\d+\")+>"), "<$1>");
}

TEST(ParametersArchive, GoldenFileIsReadFieldByField) {
    const auto parameters = fromText<DebugAndTestParameters>(golden);
    EXPECT_TRUE(parameters.isNoRebootFlag());
    EXPECT_EQ(parameters.getNumberOfFailures(), 4294967295U);
    EXPECT_EQ(parameters.getCustomIntParam("a", 9), -1);
    EXPECT_FALSE(parameters.getCustomIntParam("testParam0"));
    const InstallationPerformanceParameters& installation = parameters.getInstallationPerformanceParameters();
    EXPECT_EQ(installation.getFlashStreamBufferSize().value_or(0), 11U);
    EXPECT_FALSE(installation.getFlashSinkBufferSize());
    EXPECT_EQ(installation.getMBUProcessedCommandsPerSecond(), 20.5F);
    EXPECT_EQ(installation.getDecompressorInputChunkSize(), 262144U) << "not in the file";
    // And every field, through the form: the numbers of the golden file are exact in the library's notation,
    // too.
    std::string written = withoutAttributes(toText(parameters));
    for (const auto& [exact, shown] :
         std::vector<std::pair<std::string, std::string>>{{"2.050000000e+01", "20.5"},
                                                          {"2.150000000e+01", "21.5"},
                                                          {"3.000000000e+08", "3e+08"},
                                                          {"2.250000000e+01", "22.5"},
                                                          {"2.500000000e-01", "0.25"}}) {
        written = replaced(written, exact, shown);
    }
    EXPECT_EQ(written, withoutAttributes(golden));
}

TEST(ParametersArchive, TodaysLayoutOfOptionalValuesIsReadToo) {
    std::string todays =
        replaced(golden, "\t\t\t<item_version>0</item_version>\n\t\t\t<value>", "\t\t\t<value>");
    todays = replaced(todays, "class_id=\"2\" tracking_level=\"0\" version=\"0\"",
                      "class_id=\"2\" tracking_level=\"0\" version=\"1\"");
    todays = replaced(todays, "version=\"12\"", "version=\"18\"");
    ASSERT_NE(todays, golden);
    EXPECT_EQ(toText(fromText<DebugAndTestParameters>(todays)),
              toText(fromText<DebugAndTestParameters>(golden)));
}

TEST(ParametersArchive, DefaultsComeBackUnset) {
    const std::string text = toText(InstallationPerformanceParameters::getDefaultParameters());
    EXPECT_NE(
        text.find("<InstallationPerformanceParameters class_id=\"0\" tracking_level=\"0\" version=\"0\">"),
        std::string::npos);
    EXPECT_EQ(text.find("item_version"), std::string::npos);
    EXPECT_EQ(text.find("<value>"), std::string::npos);
    EXPECT_EQ(text.find("decompressor"), std::string::npos);
    auto parameters = fromText<InstallationPerformanceParameters>(text);
    EXPECT_FALSE(parameters.getFlashStreamBufferSize());
    EXPECT_EQ(parameters.getVerificationScale(), 0.2F);
    parameters.setDecompressorInputChunkSize(1);
    EXPECT_EQ(toText(parameters), text);
    parameters.setFlashStreamBufferSize(5U);
    EXPECT_TRUE(fromText<InstallationPerformanceParameters>(toText(parameters)).getFlashStreamBufferSize() ==
                5U);
}

TEST(ParametersArchive, DamagedFilesFailAndKeepWhatWasRead) {
    const auto survives = [](const std::string& text) {
        DebugAndTestParameters parameters;
        std::istringstream stream(text);
        bool isWhole = true;
        try {
            ParametersArchive::read(stream, parameters);
        } catch (const std::exception&) {
            isWhole = false;
        }
        return std::make_pair(isWhole, parameters.isNoRebootFlag());
    };
    const std::size_t end = golden.find("</boost_serialization>") + 20;
    const std::size_t flagRead = golden.find("<skipCompatibilityChecker>");
    for (std::size_t length = 0; length < end; length += 7) {
        const auto [isWhole, flag] = survives(golden.substr(0, length));
        ASSERT_FALSE(isWhole) << length;
        ASSERT_TRUE(flag || length < flagRead) << length;
    }
    for (const char* const element : {"panelServiceName", "noRebootFlag", "value", "item", "initialized"}) {
        EXPECT_FALSE(survives(replaced(golden, element, "renamed")).first) << element;
    }
    EXPECT_FALSE(survives(replaced(golden, "<numberOfFailures>4294967295", "<numberOfFailures>x")).first);
    EXPECT_FALSE(survives(replaced(golden, "<initialized>1", "<initialized>7")).first);
    EXPECT_FALSE(survives(replaced(golden, "<count>2", "<count>4000000000")).first);
    EXPECT_FALSE(survives(replaced(golden, "noRebootFlag", std::string(1 << 20, 'n'))).first);
    EXPECT_FALSE(survives(replaced(golden, "</boost_serialization>", "")).first);
    EXPECT_FALSE(survives(replaced(golden, "<noRebootFlag>1", "<noRebootFlag>2")).second) << "not read whole";
    EXPECT_FALSE(survives(std::string("\x00\x01\xff\xfe", 4) + golden).first);
    EXPECT_FALSE(survives(std::string(1 << 20, '\0')).first);
}

void inDevice(const std::function<void()>& body) {
    withOwnMnt([&] {
        Platform::IProductInfo::initializeProduct(Platform::TV_PRODUCT);
        boost::filesystem::create_directories(Platform::IProductInfo::getNerixPartitionPath());
        body();
    });
}

TEST(DebugAndTestParameters, DefaultsHoldWithoutAFile) {
    inDevice([] {
        EXPECT_THROW(Common::getDebugAndTestParameters(), Common::Utils::GenericException);
        EXPECT_FALSE(DebugAndTestParameters::loaded());
        DebugAndTestParameters::loadDebugAndTestParameters("test");
        EXPECT_TRUE(DebugAndTestParameters::loaded());
        EXPECT_EQ(
            FakePlatform::instance().logHolding(">Failed to open DebugAndTestParameters from /mnt/").size(),
            1U);
        Common::loadDebugAndTestParameters("/x");
        EXPECT_EQ(FakePlatform::instance().logHolding(">DebugAndTestParameters were already loaded.").size(),
                  1U);

        DebugAndTestParameters& parameters = Common::getDebugAndTestParameters();
        EXPECT_FALSE(parameters.isNoRebootFlag());
        EXPECT_EQ(parameters.getNumberOfFailures(), 0U);
        EXPECT_TRUE(parameters.getCustomIntParam("testParam1") == 1);
        EXPECT_FALSE(parameters.getCustomBoolParam("testParam0", true));
        EXPECT_TRUE(parameters.getCustomBoolParam("unset", true));
        EXPECT_EQ(FakePlatform::instance().logHolding("parameter unset: parameter not set.").size(), 1U);
    });
}

TEST(DebugAndTestParameters, SavedFileReadsBackAndFaultsAreLogged) {
    inDevice([] {
        const std::string path = DebugAndTestParameters::getConfigFilePath();
        EXPECT_EQ(path, "/mnt/systemrw/org.corvan.tv.nerix/data/tv/DebugAndTestParameters.xml");
        boost::filesystem::ofstream(path) << golden;
        DebugAndTestParameters::loadDebugAndTestParameters("test");
        DebugAndTestParameters& parameters = Common::getDebugAndTestParameters();
        EXPECT_TRUE(parameters.isNoRebootFlag());
        parameters.setPanelServiceName("saved");
        parameters.save();
        parameters.setPanelServiceName("forgotten");
        EXPECT_TRUE(parameters.reload());
        EXPECT_EQ(parameters.getPanelServiceName(), "saved");

        std::string huge;
        huge.resize(100'000'000, 'x');
        boost::filesystem::ofstream(path) << huge;
        EXPECT_FALSE(parameters.reload());
        EXPECT_EQ(FakePlatform::instance().logHolding(">Failed to load DebugAndTestParameters from ").size(),
                  1U);
        EXPECT_EQ(parameters.getPanelServiceName(), "saved");
        boost::filesystem::remove(path);
        boost::filesystem::create_directory(path);
        EXPECT_FALSE(parameters.reload());
        parameters.save();
        EXPECT_EQ(FakePlatform::instance().logHolding(">Failed to save DebugAndTestParameters to ").size(),
                  1U);
    });
}

} // namespace
} // namespace Nerix::Tests
