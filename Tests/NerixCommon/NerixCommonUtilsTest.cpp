#include "NerixCommon/NerixCommonUtils.h"

#include "Common/Utils/Errors.h"
#include "Tests/Fakes/FakePlatform.h"

#include <boost/exception/get_error_info.hpp>
#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <gtest/gtest.h>

namespace Nerix::Tests {
namespace {

using Utils = NerixCommon::NerixCommonUtils;

TEST(NerixCommonUtils, VersionsSplitAtTheFirstDot) {
    const struct {
        const char* text;
        int major;
        int minor;
    } good[] = {{"1234.5", 1234, 5},
                {"7", 7, 0},
                {"-3.0", -3, 0},
                {"+3", 3, 0},
                {"2147483647.-2147483648", 2147483647, -2147483647 - 1}};
    for (const auto& version : good) {
        int major = 99;
        int minor = 99;
        Utils::parseVersion(version.text, major, minor);
        EXPECT_EQ(std::make_pair(major, minor), std::make_pair(version.major, version.minor)) << version.text;
    }
    for (const char* const bad :
         {"", ".", ".5", "1.", "1.2.3", "99999999999", " 1", "1 ", "0x1", "1e3", "1,5", "+"}) {
        int major = 0;
        int minor = 0;
        try {
            Utils::parseVersion(bad, major, minor);
            ADD_FAILURE() << bad;
        } catch (const boost::bad_lexical_cast& failure) {
            const auto* const context = dynamic_cast<const boost::exception*>(&failure);
            ASSERT_NE(context, nullptr);
            const std::string* const lines = boost::get_error_info<Common::Utils::errinfo_rethrows>(*context);
            ASSERT_NE(lines, nullptr);
            EXPECT_EQ(lines->find(" -> static void Nerix::NerixCommon::NerixCommonUtils::parseVersion("), 0U);
        }
    }
}

TEST(NerixCommonUtils, VersionsAreShownByTheirMajorNumber) {
    FakePlatform::instance().reset();
    EXPECT_EQ(Utils::versionStringForUI("1234.5"), "1234");
    EXPECT_EQ(Utils::versionStringForUI("-1"), "-1");
    EXPECT_TRUE(FakePlatform::instance().log().empty());
    EXPECT_EQ(Utils::versionStringForUI("abc"), "abc");
    EXPECT_EQ(
        FakePlatform::instance().logHolding(">Exception caught in versionStringForUI. Ignoring: ").size(),
        1U);
}

TEST(NerixCommonUtils, TransactionIdsAreChecksums) {
    const std::string digits = "123456789";
    EXPECT_EQ(Utils::getTransactionIdForUpgrade({digits.begin(), digits.end()}), "2639f4cb");
    EXPECT_EQ(Utils::getTransactionIdForUpgrade({}), "00000000");
}

} // namespace
} // namespace Nerix::Tests
