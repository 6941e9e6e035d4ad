#include "Platform/Interfaces/dlog.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/filesystem/fstream.hpp>
#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <thread>

namespace Nerix::Tests {
namespace {

TEST(SystemLog, RecordsAreLinesWhateverTheyHold) {
    const TemporaryDirectory home;
    ::setenv("NERIX_PLATFORM_HOME", home.path().c_str(), 1);
    const std::string awkward = "{} %s {0:x} \\ a\nb\tc\x01 \xff\xfe" + std::string(5000, 'x');
    EXPECT_GT(__dlog_print(DLOG_BUFFER_MAIN, DLOG_PRIORITY_INFO, "tag", "%s", awkward.c_str()), 0);
    const auto logMany = [] {
        for (int i = 0; i < 200; ++i) {
            __dlog_print(DLOG_BUFFER_MAIN, DLOG_PRIORITY_DEBUG, "tag", "many");
        }
    };
    std::thread other(logMany);
    logMany();
    other.join();

    boost::filesystem::ifstream file(home.path() / "log/main.log");
    std::string line;
    std::getline(file, line);
    EXPECT_EQ(line.substr(line.find(" I ")),
              " I tag {} %s {0:x} \\\\ a\\nb\\tc\\x01 \xff\xfe" + std::string(5000, 'x'));
    const std::regex plain(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}[+-]\d\d:\d\d D tag many)");
    int count = 0;
    for (; std::getline(file, line); ++count) {
        EXPECT_TRUE(std::regex_match(line, plain)) << line;
    }
    EXPECT_EQ(count, 400);
}

} // namespace
} // namespace Nerix::Tests
