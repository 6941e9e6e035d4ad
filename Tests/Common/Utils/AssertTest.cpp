#include "Common/Utils/Assert.h"
#include "Tests/Fakes/FakeConsole.h"

#include <boost/assert.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>

#include <unistd.h>

namespace Nerix::Tests {
namespace {

const std::string header = "org.corvan.tv.nerix.NERIX: Direct \\[FTL\\]\\[[0-9]+ .*\\] ASSERTION FAILED: ";

TEST(AssertDeathTest, WithoutConsoleTheReportGoesToStandardErrorAndTheLog) {
    const int one = 1;
    EXPECT_DEATH(NerixAssert(one == 2),
                 "Cannot open /dev/console\n" + header +
                     "one == 2, .*TestBody\\(\\), AssertTest.cpp:[0-9]+\n"
                     "dlog fatal: .*\\[FTL\\] Assert.cpp:[0-9]+>ASSERTION FAILED: one == 2");
    EXPECT_DEATH(NerixAssertMsg(false, "why"), header + "false, .*\nMESSAGE: why\n");
}

TEST(AssertDeathTest, AssertionsInsideBoostEndInTheSameReport) {
    const boost::shared_ptr<int> empty;
    EXPECT_DEATH(static_cast<void>(*empty), header + "px != 0, .*shared_ptr.hpp:[0-9]+\n");
    EXPECT_DEATH(BOOST_ASSERT_MSG(false, "why"), header + "false, .*\nMESSAGE: why\n");
}

TEST(AssertDeathTest, ConsoleGetsOneLine) {
    char directory[] = "/tmp/nerix-console-XXXXXX";
    ASSERT_NE(::mkdtemp(directory), nullptr);
    fakeConsolePath() = std::string(directory) + "/console";
    EXPECT_DEATH(NerixAssert(false), "dlog fatal: ");
    std::ifstream console(fakeConsolePath());
    const std::string text{std::istreambuf_iterator<char>(console), {}};
    EXPECT_TRUE(std::regex_match(text, std::regex(header + "false, .*AssertTest.cpp:[0-9]+\n"))) << text;
    std::remove(fakeConsolePath().c_str());
    ::rmdir(directory);
    fakeConsolePath().clear();
}

} // namespace
} // namespace Nerix::Tests
