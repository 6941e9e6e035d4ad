#include "NerixCommon/NerixCommonUtils.h"

#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/Report.h"

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <gtest/gtest.h>

#include <locale>
#include <tuple>

namespace Nerix::Tests {

using Utils = NerixCommon::NerixCommonUtils;

TEST(NerixCommonUtils, VersionsSplitAtTheFirstDot) {
    int major = 99;
    int minor = 99;
    const std::tuple<const char*, int, int> good[] = {{"1234.5", 1234, 5},
                                                      {"7", 7, 0},
                                                      {"-3.0", -3, 0},
                                                      {"+3", 3, 0},
                                                      {"2147483647.-2147483648", 2147483647, -2147483648}};
    for (const auto& [text, wholes, parts] : good) {
        Utils::parseVersion(text, major, minor);
        EXPECT_EQ(std::make_pair(major, minor), std::make_pair(wholes, parts)) << text;
        EXPECT_EQ(Utils::versionStringForUI(text), std::to_string(wholes)) << text;
    }
    for (const char* const bad : {"", ".", ".5", "1.", "1.2.3", "99999999999", " 1", "1 ", "0x1", "1e3", "1,5", "+"}) {
        FakePlatform::instance().reset();
        EXPECT_THROW(Utils::parseVersion(bad, major, minor), boost::bad_lexical_cast) << bad;
        EXPECT_EQ(Utils::versionStringForUI(bad), bad) << "a text that is no version is shown as it is";
        const std::string record = FakePlatform::instance().log().at(0).withoutHeader();
        EXPECT_PRED2(matches, record,
                     "\\[FTL\\] NerixCommonUtils.cpp:\\d+>Exception caught in versionStringForUI. "
                     "Ignoring: NerixCommon/NerixCommonUtils.cpp\\([^]*");
    }
    EXPECT_THROW(Utils::parseVersion("5.x", major, minor), boost::bad_lexical_cast);
    EXPECT_EQ(major, 5) << "stored although the minor is bad";
}

struct Grouped : std::numpunct<char> {
    std::string do_grouping() const override { return "\3"; }
};

TEST(NerixCommonUtils, VersionsAreReadAlikeInEveryLocale) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new Grouped));
    int major = 0;
    int minor = 0;
    EXPECT_THROW(Utils::parseVersion("1,234", major, minor), boost::bad_lexical_cast);
    Utils::parseVersion("1234", major, minor);
    EXPECT_EQ(major, 1234);
    EXPECT_EQ(Utils::versionStringForUI("1234.5"), "1,234") << "the locale's own grouping";
    std::locale::global(before);
}

TEST(NerixCommonUtilsDeathTest, UpgradeTypesHaveNames) {
    const auto nameOf = [](int type) { return Utils::upgradeTypeToString(static_cast<NerixCommon::UpgradeType>(type)); };
    EXPECT_EQ(nameOf(1), "OTA");
    EXPECT_EQ(nameOf(2), "OTN");
    EXPECT_EQ(nameOf(3), "USB");
    EXPECT_DEATH(nameOf(4), "ASSERTION FAILED: false");
}

TEST(NerixCommonUtils, TransactionIdsAreChecksums) {
    const std::string digits = "123456789";
    EXPECT_EQ(Utils::getTransactionIdForUpgrade({digits.begin(), digits.end()}), "2639f4cb");
}

} // namespace Nerix::Tests
