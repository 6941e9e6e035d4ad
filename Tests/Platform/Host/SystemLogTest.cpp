#include "Platform/Host/SystemLog.h"
#include "Platform/Interfaces/dlog.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/filesystem/fstream.hpp>
#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <thread>

namespace Nerix::Tests {
namespace {

std::vector<std::string> linesOf(const boost::filesystem::path& file) {
    boost::filesystem::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(SystemLog, RecordsAreLinesWhateverTheyHold) {
    const TemporaryDirectory home;
    ::setenv("NERIX_PLATFORM_HOME", home.path().c_str(), 1);
    const std::string awkward = "{} %s {0:x} \\ a\nb\tc\x01 \xff\xfe";
    EXPECT_GT(__dlog_print(DLOG_BUFFER_MAIN, DLOG_PRIORITY_INFO, "tag", "%s", awkward.c_str()), 0);
    EXPECT_GT(
        __dlog_print(DLOG_BUFFER_SYSTEM, DLOG_PRIORITY_FATAL, "tag", "%s", std::string(5000, 'x').c_str()),
        0);
    const auto logMany = [] {
        for (int i = 0; i < 200; ++i) {
            __dlog_print(DLOG_BUFFER_MAIN, DLOG_PRIORITY_DEBUG, "tag", "many");
        }
    };
    std::thread other(logMany);
    logMany();
    other.join();

    const auto main = linesOf(home.path() / "log/main.log");
    ASSERT_EQ(main.size(), 401U);
    const std::string time =
        "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}[+-][0-9]{2}:[0-9]{2} ";
    EXPECT_TRUE(std::regex_match(main[1], std::regex(time + "D tag many"))) << main[1];
    EXPECT_EQ(main[0].substr(main[0].find(" I ")), " I tag {} %s {0:x} \\\\ a\\nb\\tc\\x01 \xff\xfe");
    const auto system = linesOf(home.path() / "log/system.log");
    ASSERT_EQ(system.size(), 1U);
    EXPECT_EQ(system[0].substr(system[0].find(" F ")), " F tag " + std::string(5000, 'x'));
}

} // namespace
} // namespace Nerix::Tests
