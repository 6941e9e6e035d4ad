#include "Common/Utils/Errors/Assert.h"

#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/assert.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>
#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <string>

namespace Nerix::Tests {
namespace {

const std::string header = "org.corvan.tv.nerix.NERIX: Direct \\[FTL\\]\\[[0-9]+ .*\\] ASSERTION FAILED: ";

TEST(AssertDeathTest, WithoutConsoleTheReportGoesToStandardErrorAndTheLog) {
    const int one = 1;
    EXPECT_DEATH(NerixAssert(one == 2), "Cannot open /dev/console\n" + header +
                                            "one == 2, .*TestBody\\(\\), AssertTest.cpp:[0-9]+\n"
                                            "dlog fatal: .*\\[FTL\\] Assert.cpp:[0-9]+>ASSERTION FAILED: one == 2");
    EXPECT_DEATH(NerixAssertMsg(false, "why"), header + "false, .*\nMESSAGE: why\n");
}

TEST(AssertDeathTest, ReportStandsOnTheConsoleBeforeTheProcessEnds) {
    const TemporaryDirectory directory;
    const boost::filesystem::path console = directory.path() / "console";
    ::setenv("NERIX_TEST_CONSOLE", console.c_str(), 1);
    EXPECT_DEATH(NerixAssertMsg(false, "why"), "^dlog fatal: ");
    ::unsetenv("NERIX_TEST_CONSOLE");
    EXPECT_TRUE(std::regex_match(contentOf(console), std::regex(header + "false, .*\nMESSAGE: why\n")));
}

TEST(AssertDeathTest, AssertionsInsideBoostEndInTheSameReport) {
    const boost::shared_ptr<int> empty;
    EXPECT_DEATH(static_cast<void>(*empty), header + "px != 0, .*shared_ptr.hpp:[0-9]+\n");
    EXPECT_DEATH(BOOST_ASSERT_MSG(false, "why"), header + "false, .*\nMESSAGE: why\n");
}

} // namespace
} // namespace Nerix::Tests
