#include "PlatformInterfaces/dlog.h"
#include "PlatformInterfaces/vconf.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/filesystem/directory.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <iterator>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace Nerix::Tests {
namespace {

int logText(DlogPriority priority, const std::string& text) {
    return __dlog_print(DLOG_BUFFER_MAIN, priority, "tag", "%s", text.c_str());
}

/// The host's log, in a directory of the test.
class SystemLogDeathTest : public testing::Test {
protected:
    void SetUp() override {
        ::setenv("NERIX_PLATFORM_HOME", m_home.path().c_str(), 1);
        ::unsetenv("NERIX_HOST_LOG");
    }

    boost::filesystem::path logFile() const { return m_home.path() / "log/main.log"; }
    std::string logged() const { return contentOf(logFile()); }

private:
    const TemporaryDirectory m_home;
};

TEST_F(SystemLogDeathTest, TextsAreLoggedWholeWhateverTheirLength) {
    for (const std::size_t length : {0, 1, 1022, 1023, 1024, 1025, 5000}) {
        const std::string text(length, 'x');
        inOwnProcess([&] { EXPECT_EQ(logText(DLOG_PRIORITY_INFO, text), static_cast<int>(length)); });
        EXPECT_PRED2(contains, logged(), " I tag " + text + '\n');
    }
}

TEST_F(SystemLogDeathTest, RecordBeforeAWarningOrASettingOutlivesAnAbort) {
    const auto abortAfter = [](const char* number, void (*operation)()) {
        logText(DLOG_PRIORITY_INFO, number);
        operation();
        std::abort();
    };
    EXPECT_DEATH(abortAfter("one", [] { logText(DLOG_PRIORITY_WARNING, "two"); }), "");
    EXPECT_PRED2(matches, logged(), "\\S+ I tag one\n\\S+ W tag two\n");
    EXPECT_DEATH(abortAfter("three", [] { vconf_set_int("memory/number", 1); }), "");
    EXPECT_PRED2(contains, logged(), "three");
}

TEST_F(SystemLogDeathTest, RecordIsWrittenAfterASecond) {
    inOwnProcess([&] {
        logText(DLOG_PRIORITY_INFO, "information");
        for (int tenths = 0; tenths != 100 && logged().empty(); ++tenths) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        EXPECT_PRED2(contains, logged(), "information");
    });
}

TEST_F(SystemLogDeathTest, RecordThatCannotBeWrittenIsReported) {
    boost::filesystem::create_directory(logFile().parent_path());
    boost::filesystem::create_symlink("/dev/full", logFile());
    const auto logTwice = [] {
        const int first = logText(DLOG_PRIORITY_WARNING, "first");
        std::exit(first < 0 && logText(DLOG_PRIORITY_WARNING, "second") < 0 ? 0 : 1);
    };
    EXPECT_EXIT(logTwice(), testing::ExitedWithCode(0), "^nerix host log: records are lost: [^\n]*\n$") << "once";
}

TEST_F(SystemLogDeathTest, RecordAfterTheEndOfTheLogIsWritten) {
    const auto logLate = [] {
        std::atexit([] { logText(DLOG_PRIORITY_INFO, "late"); }); // runs after the end of the log, which is registered later
        logText(DLOG_PRIORITY_INFO, "early");
        std::exit(0);
    };
    EXPECT_EXIT(logLate(), testing::ExitedWithCode(0), "");
    EXPECT_PRED2(matches, logged(), "\\S+ I tag early\n\\S+ I tag late\n");
}

TEST_F(SystemLogDeathTest, FileThatOthersReplacedOrFilledIsOpenedAgain) {
    inOwnProcess([&] {
        logText(DLOG_PRIORITY_WARNING, "one");
        const boost::filesystem::path directory = logFile().parent_path();
        ASSERT_EQ(::flock(::open(directory.c_str(), O_RDONLY | O_CLOEXEC), LOCK_EX), 0); // like a process that was stopped
        boost::filesystem::copy_file(logFile(), directory / "copy");
        boost::filesystem::rename(directory / "copy", logFile());
        logText(DLOG_PRIORITY_WARNING, "two");
        boost::filesystem::resize_file(logFile(), (16U << 20U) - 100);
        logText(DLOG_PRIORITY_WARNING, "three");
        EXPECT_TRUE(contains(logged(), "two")) << "the file is not full";
        for (int rotation = 0; rotation != 6; ++rotation) {
            boost::filesystem::resize_file(logFile(), 16U << 20U);
            logText(DLOG_PRIORITY_WARNING, "next");
            EXPECT_PRED2(matches, logged(), "\\S+ W tag next\n");
        }
        using Directory = boost::filesystem::directory_iterator;
        EXPECT_EQ(std::distance(Directory(directory), Directory()), 6) << "main.log, system.log and four older files";
    });
}

} // namespace
} // namespace Nerix::Tests
