#include "PlatformInterfaces/dlog.h"
#include "PlatformInterfaces/vconf.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

#include <sys/resource.h>
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
    const auto logIntoAFullFile = [] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit nothing{0, RLIM_INFINITY};
        ::setrlimit(RLIMIT_FSIZE, &nothing);
        std::exit(logText(DLOG_PRIORITY_WARNING, "warning") < 0 ? 0 : 1);
    };
    EXPECT_EXIT(logIntoAFullFile(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace Nerix::Tests
