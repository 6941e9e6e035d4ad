#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "Debug/DebugAndTestParameters/ParametersArchive.h"

#include "Platform/Product/IProductInfo.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/algorithm/string/replace.hpp>
#include <boost/archive/basic_archive.hpp>
#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <iomanip>
#include <limits>
#include <locale>
#include <regex>
#include <sstream>
#include <stdexcept>

#include <sys/mount.h>
#include <sys/stat.h>

namespace Nerix::Tests {
namespace {

using boost::algorithm::replace_all_copy;
using Common::DebugAndTestParameters;

/// A file of an older library, with numbers and texts that differ from the defaults.
const std::string golden = contentOf(NERIX_GOLDEN "/golden.xml");

/// Returns the parameters that could be read, and true if the whole text could.
std::pair<DebugAndTestParameters, bool> readFrom(const std::string& text) {
    DebugAndTestParameters parameters;
    std::istringstream stream(text);
    try {
        ParametersArchive::read(stream, parameters);
        return {parameters, true};
    } catch (const std::exception&) { return {parameters, false}; }
}

std::string written(const DebugAndTestParameters& parameters) {
    std::ostringstream stream;
    ParametersArchive::write(stream, parameters);
    return stream.str();
}

/// Returns the text with the archive version of the library that is in use.
std::string withTodaysVersion(const std::string& text) {
    const boost::archive::library_version_type library = boost::archive::BOOST_ARCHIVE_VERSION();
    const std::string version = std::to_string(static_cast<std::uint_least16_t>(library));
    return replace_all_copy(text, "archive\" version=\"11\"", "archive\" version=\"" + version + "\"");
}

const std::string withoutItemVersion = replace_all_copy(golden, "\t\t\t<item_version>0</item_version>\n", "");

/// The layout written by current Boost versions: optional values have class version 1 and no item_version.
const std::string todays = std::regex_replace(
    withTodaysVersion(withoutItemVersion), std::regex("(class_id=\"[23]\" tracking_level=\"0\" version=)\"0\""), "$1\"1\"");

TEST(ParametersArchive, FilesOfOldAndNewLibrariesAreReadFieldByField) {
    const std::pair<const char*, std::string> layouts[] = {
        {"older library", golden},
        {"today's library", todays},
        {"blanks in tags", replace_all_copy(replace_all_copy(golden, "<value>", "<value >"), "</count>", "</count\n>")}};
    for (const auto& [layout, text] : layouts) {
        SCOPED_TRACE(layout);
        const auto [parameters, isWhole] = readFrom(text);
        EXPECT_TRUE(isWhole);
        EXPECT_EQ(written(parameters), withTodaysVersion(golden));
        EXPECT_TRUE(parameters.isNoRebootFlag());
        EXPECT_TRUE(parameters.isSkipCompatibilityChecker());
        EXPECT_TRUE(parameters.isSkipVersionChecker());
        EXPECT_TRUE(parameters.isSkipIntegrityChecker());
        EXPECT_TRUE(parameters.isDontSwitchPartitions());
        EXPECT_TRUE(parameters.isEmulateWasSuccessfulUpgrade());
        EXPECT_TRUE(parameters.isTestTransformationFailure());
        EXPECT_TRUE(parameters.isDurationReduced());
        EXPECT_EQ(parameters.getNumberOfFailures(), 4294967295U);
        const InstallationPerformanceParameters& installation = parameters.getInstallationPerformanceParameters();
        EXPECT_EQ(installation.getFlashStreamBufferSize().get(), 11U);
        EXPECT_EQ(installation.getInstallationChunkSize(), 15U);
        EXPECT_EQ(installation.getVerificationChunkSize(), 16U);
    }
}

TEST(ParametersArchive, FilesOfOtherLayoutsAreRejected) {
    const std::string optionalClass = "class_id=\"2\" tracking_level=\"0\" version=";
    const std::string objectClass = "<DebugAndTestParameters class_id=\"0\" tracking_level=\"0\" version=";
    const std::pair<const char*, std::string> layouts[] = {
        {"optional values without item_version", withoutItemVersion},
        {"optional values of version 1", replace_all_copy(golden, optionalClass + "\"0\"", optionalClass + "\"1\"")},
        {"optional values of version 2", replace_all_copy(todays, optionalClass + "\"1\"", optionalClass + "\"2\"")},
        {"object of version 1", replace_all_copy(golden, objectClass + "\"0\"", objectClass + "\"1\"")},
        {"no end of the root", replace_all_copy(golden, "</boost_serialization>", "")},
        {"unknown field", replace_all_copy(golden, "noRebootFlag>", "noRebootFlags>")}};
    for (const auto& [layout, text] : layouts) {
        SCOPED_TRACE(layout);
        ASSERT_NE(text, golden);
        EXPECT_FALSE(readFrom(text).second);
    }
}

TEST(ParametersArchive, NumbersThatTheirFieldsCannotHoldAreRejected) {
    for (const std::string element : {"<numberOfFailures>", "<networkStreamBufferSize>"}) {
        for (const std::string number : {"-1", "4294967296"}) {
            const std::string changed = std::regex_replace(golden, std::regex(element + "\\d+"), element + number);
            EXPECT_FALSE(readFrom(changed).second) << element << number;
        }
    }
    const std::regex optionalValue("<value>11<");
    EXPECT_FALSE(readFrom(std::regex_replace(golden, optionalValue, "<value>-1<")).second);
}

TEST(ParametersArchive, DamagedFieldAndThoseAfterItKeepTheirDefaults) {
    const auto readDamaged = [](const std::string& good, const std::string& damaged) {
        EXPECT_PRED2(contains, golden, good);
        return readFrom(replace_all_copy(golden, good, damaged)).first;
    };
    EXPECT_FALSE(readDamaged("1</noRebootFlag>", "1</noRebootFlags>").isNoRebootFlag());
    const DebugAndTestParameters parameters = readDamaged("4294967295</numberOfFailures>", "7</numberOfFailure>");
    EXPECT_TRUE(parameters.isNoRebootFlag()) << "read before";
    EXPECT_EQ(parameters.getNumberOfFailures(), 0U);
    EXPECT_EQ(parameters.getPanelServiceName(), "") << "not read after";
    const InstallationPerformanceParameters installation =
        readDamaged("<value>11</value>", "<value>11</values>").getInstallationPerformanceParameters();
    EXPECT_FALSE(installation.getFlashStreamBufferSize());
}

TEST(ParametersArchive, WritingANumberThatIsNotFiniteThrows) {
    DebugAndTestParameters parameters;
    for (const float number : {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        parameters.getInstallationPerformanceParameters().setVerificationScale(number);
        EXPECT_THROW(written(parameters), std::range_error) << number;
    }
}

struct Grouped : std::numpunct<char> {
    std::string do_grouping() const override { return "\3"; }
};

TEST(ParametersArchive, NumbersAreTheSameInEveryLocale) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new Grouped));
    const auto [parameters, isWhole] = readFrom(golden);
    EXPECT_TRUE(isWhole);
    EXPECT_EQ(written(parameters), withTodaysVersion(golden));
    std::locale::global(before);
}

TEST(ParametersArchive, DefaultsMatchGoldenFile) {
    EXPECT_EQ(written(DebugAndTestParameters()), withTodaysVersion(contentOf(NERIX_GOLDEN "/defaults.xml")));
    const InstallationPerformanceParameters& defaults = InstallationPerformanceParameters::getDefaultParameters();
    EXPECT_EQ(defaults.getDecompressorInputChunkSize(), 262144U);
    EXPECT_EQ(defaults.getDecompressorOutputBufferSize(), 1048576U);
}

TEST(InstallationPerformanceParameters, AreStoredInAFileOfTheirOwn) {
    const InstallationPerformanceParameters from = readFrom(golden).first.getInstallationPerformanceParameters();
    const TemporaryDirectory directory;
    const std::string file = (directory.path() / "file").native();
    from.save(file);
    InstallationPerformanceParameters again;
    again.load(file);
    again.save(file + "2");
    EXPECT_PRED2(contains, contentOf(file), "\n<InstallationPerformanceParameters class_id=\"0\"");
    EXPECT_EQ(contentOf(file), contentOf(file + "2"));
    EXPECT_EQ(again.getMBUProcessedCommandsPerSecond(), from.getMBUProcessedCommandsPerSecond());
    EXPECT_NE(again.getMBUProcessedCommandsPerSecond(), again.getMBUVerifiedCommandsPerSecond());
    again.load("/nowhere/file");
    again.save("/nowhere/file");
    again.save("/dev/full");
    FakePlatform& platform = FakePlatform::instance();
    EXPECT_EQ(platform.countLogged(">Failed to load InstallationPerformanceParameters from /nowhere/file"), 1U);
    EXPECT_EQ(platform.countLogged(">Failed to save InstallationPerformanceParameters to /nowhere/file"), 1U);
    EXPECT_EQ(platform.countLogged("[WRN]"), 3U);
}

TEST(DebugAndTestParameters, CustomValuesAreSetAndRemoved) {
    DebugAndTestParameters parameters;
    parameters.setCustomBoolParam("yes", true);
    parameters.setCustomBoolParam("no", false);
    parameters.setCustomIntParam("many", 5);
    EXPECT_EQ(parameters.getCustomIntParam("yes", 9), 1);
    EXPECT_EQ(parameters.getCustomIntParam("no", 9), 0);
    EXPECT_EQ(FakePlatform::instance().countLogged(">Getting custom debug parameter yes: 1."), 1U);
    EXPECT_TRUE(parameters.getCustomBoolParam("many").get());
    EXPECT_FALSE(parameters.getCustomBoolParam("no", true));
    parameters.setCustomIntParam("many", boost::none);
    parameters.setCustomBoolParam("yes", boost::none);
    EXPECT_FALSE(parameters.getCustomIntParam("many"));
    EXPECT_FALSE(parameters.getCustomBoolParam("yes"));
}

TEST(DebugAndTestParameters, UseBeforeLoadingThrows) {
    inOwnProcess([] {
        Platform::IProductInfo::initializeProduct(Platform::TV_PRODUCT);
        const std::string unloaded = "] = DebugAndTestParameters were not loaded.\n";
        EXPECT_PRED2(contains, diagnosticsOf([] { Common::getDebugAndTestParameters(); }), unloaded);
        EXPECT_PRED2(contains, diagnosticsOf([] { Common::loadDebugAndTestParameters("path"); }), unloaded);
        EXPECT_PRED2(contains, diagnosticsOf([] { DebugAndTestParameters().reload(); }),
                     "] = load DebugAndTestParameters before reload\n");
        EXPECT_FALSE(DebugAndTestParameters::loaded());
    });
}

/// Runs body in a process that has loaded the parameters. The directory of their file exists, but the file does not.
void withLoadedParameters(const std::function<void(DebugAndTestParameters&, const boost::filesystem::path&)>& body) {
    withOwnMnt([&] {
        Platform::IProductInfo::initializeProduct(Platform::TV_PRODUCT);
        DebugAndTestParameters::loadDebugAndTestParameters("test");
        const boost::filesystem::path path = DebugAndTestParameters::getConfigFilePath();
        boost::filesystem::create_directories(path.parent_path());
        body(Common::getDebugAndTestParameters(), path);
    });
}

TEST(DebugAndTestParameters, AreLoadedOnce) {
    withLoadedParameters([](DebugAndTestParameters& parameters, const boost::filesystem::path& path) {
        boost::filesystem::ofstream(path) << golden;
        Common::loadDebugAndTestParameters("again");
        EXPECT_FALSE(parameters.isNoRebootFlag());
        EXPECT_EQ(FakePlatform::instance().countLogged(">DebugAndTestParameters were already loaded."), 1U);
        EXPECT_EQ(&Nerix::getInstallationPerformanceParameters(), &parameters.getInstallationPerformanceParameters());
        EXPECT_TRUE(DebugAndTestParameters::loaded());
        EXPECT_TRUE(parameters.getCustomBoolParam("unset", true));
        EXPECT_EQ(FakePlatform::instance().countLogged("parameter unset: parameter not set."), 1U);
    });
}

TEST(DebugAndTestParameters, AreSavedIntoTheirFile) {
    withLoadedParameters([](DebugAndTestParameters& parameters, const boost::filesystem::path& path) {
        EXPECT_EQ(path, "/mnt/systemrw/org.corvan.tv.nerix/data/tv/DebugAndTestParameters.xml");
        boost::filesystem::ofstream(path) << golden;
        EXPECT_TRUE(parameters.reload());
        parameters.setPanelServiceName("saved");
        boost::filesystem::permissions(path, boost::filesystem::owner_read | boost::filesystem::owner_write);
        boost::filesystem::create_hard_link(path, path.parent_path() / "link");
        parameters.save();
        EXPECT_EQ(boost::filesystem::status(path).permissions(), 0600);
        EXPECT_EQ(boost::filesystem::hard_link_count(path), 2U) << "the file was replaced";
        parameters.setPanelServiceName("forgotten");
        EXPECT_TRUE(parameters.reload());
        EXPECT_EQ(parameters.getPanelServiceName(), "saved");
    });
}

TEST(DebugAndTestParameters, FaultsOfTheirFileAreLogged) {
    withLoadedParameters([](DebugAndTestParameters& parameters, const boost::filesystem::path& path) {
        EXPECT_FALSE(parameters.reload());
        EXPECT_EQ(FakePlatform::instance().countLogged(">Failed to open DebugAndTestParameters from /mnt/"), 2U);
        parameters.setPanelServiceName(golden.substr(0, 1000)); // so that the file needs two pages
        boost::filesystem::ofstream(path) << std::setw(100'000'000) << 'x';
        EXPECT_FALSE(parameters.reload());
        boost::filesystem::remove(path);
        ::mkfifo(path.c_str(), 0600);
        parameters.save();
        boost::filesystem::remove(path);
        EXPECT_EQ(::mount(nullptr, "/mnt", nullptr, MS_REMOUNT, "size=4k"), 0);
        parameters.save();
        boost::filesystem::remove(path);
        boost::filesystem::create_directory(path);
        parameters.save();
        EXPECT_EQ(parameters.getPanelServiceName(), golden.substr(0, 1000));
        for (const char* const record :
             {">Failed to load DebugAndTestParameters from ", "DebugAndTestParameters.xml: cannot write: Is a directory",
              "DebugAndTestParameters.xml: cannot write: No space left on device",
              "DebugAndTestParameters.xml: cannot write: No such device or address"}) {
            EXPECT_EQ(FakePlatform::instance().countLogged(record), 1U) << record;
        }
    });
}

} // namespace
} // namespace Nerix::Tests
