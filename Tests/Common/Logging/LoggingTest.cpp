#include "Common/Logging/Log.h"
#include "Common/Logging/MaxElapsed.h"
#include "PlatformInterfaces/dlog.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/Report.h"

#include <gtest/gtest.h>

#include <locale>
#include <new>
#include <set>
#include <stdexcept>
#include <thread>
#include <tuple>

namespace Nerix::Tests {
namespace {

using Common::Logging::LoggingClass;

/// A record logged before main, when the logging code's own statics may not have been initialised.
const std::string recordOfAGlobal = [] {
    NERIX_LOG_STREAM(INF) << "global";
    return FakePlatform::instance().log().back().text;
}();

/// Throws std::bad_alloc when a number is written.
struct NoMemory : std::num_put<char> {
    iter_type do_put(iter_type, std::ios_base&, char_type, long) const override { throw std::bad_alloc(); }
};

TEST(LoggingStream, MessageThatFindsNoMemoryThrowsInsteadOfBeingCut) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new NoMemory));
    EXPECT_THROW(NERIX_LOG_STREAM(INF) << "number " << 1L, std::bad_alloc);
    std::locale::global(before);
}

TEST(Logging, RecordCarriesProcessThreadNumberAndPosition) {
    FakePlatform::instance().reset();
    LoggingClass::init("Program");
    const int line = __LINE__;
    NERIX_LOG(ERR, "before %d", 1);
    NERIX_LOG_STREAM(INF) << "100% of " << 2;
    const std::vector<LogRecord> records = FakePlatform::instance().log();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(recordOfAGlobal.substr(0, 3), "[][");
    EXPECT_EQ(records[0].tag, "org.corvan.tv.nerix.NERIX");
    EXPECT_EQ(records[0].withoutHeader(), "[ERR] LoggingTest.cpp:" + std::to_string(line + 1) + ">before 1");
    EXPECT_EQ(records[1].text.find("[Program-0.348.0][" + std::to_string(::gettid()) + " Tests_Common_Lo]["), 0U);
    EXPECT_EQ(records[1].withoutHeader(), "[INF] LoggingTest.cpp:" + std::to_string(line + 2) + ">100% of 2");
}

TEST(LoggingStream, MessageThatThrowsIsLoggedUpToThere) {
    FakePlatform::instance().reset();
    const auto throwing = []() -> int { throw std::runtime_error("cause"); };
    EXPECT_THROW(NERIX_LOG_STREAM(WRN) << "half-made " << throwing(), std::runtime_error);
    FakePlatform::instance().failNextRecord();
    EXPECT_THROW(NERIX_LOG_STREAM(WRN) << "lost " << throwing(), std::runtime_error) << "the message's own exception";
    FakePlatform::instance().failNextRecord();
    EXPECT_THROW(NERIX_LOG_STREAM(WRN) << "lost", std::bad_alloc);
    ASSERT_EQ(FakePlatform::instance().log().size(), 1U);
    EXPECT_PRED2(matches, FakePlatform::instance().log()[0].text, ".*\\.cpp:\\d+>half-made ");
}

struct LevelLayout {
    LoggingClass::Level level;
    const char* name;
    int buffer;       ///< of the record
    int priority;     ///< of the record
    std::string text; ///< of the record; empty if the level is not logged
};

TEST(Logging, MapsLevelsToBufferPriorityAndName) {
    const LevelLayout cases[] = {
        {LoggingClass::NONE, "UNKNOWN LEVEL", 0, 0, ""},
        {LoggingClass::VERBOSE, "VERBOSE", 0, 0, ""},
        {LoggingClass::DBG, "DBG", DLOG_BUFFER_MAIN, DLOG_PRIORITY_DEBUG, "[DBG] x"},
        {LoggingClass::INF, "INF", DLOG_BUFFER_MAIN, DLOG_PRIORITY_INFO, "[INF] x"},
        {LoggingClass::WRN, "WRN", DLOG_BUFFER_MAIN, DLOG_PRIORITY_WARNING, "[WRN] x"},
        {LoggingClass::ERR, "ERR", DLOG_BUFFER_SYSTEM, DLOG_PRIORITY_WARNING, "[ERR] x"},
        {LoggingClass::FTL, "FTL", DLOG_BUFFER_SYSTEM, DLOG_PRIORITY_FATAL, "[FTL] x"},
        {static_cast<LoggingClass::Level>(7), "UNKNOWN LEVEL", DLOG_BUFFER_SYSTEM, DLOG_PRIORITY_ERROR, "[INF] x"},
    };
    for (const LevelLayout& layout : cases) {
        SCOPED_TRACE(layout.level);
        FakePlatform::instance().reset();
        EXPECT_STREQ(LoggingClass::logLevelToString(layout.level), layout.name);
        LoggingClass::print(&LoggingClass::printLines, "tag", layout.level, "%s", "x");
        const std::vector<LogRecord> records = FakePlatform::instance().log();
        ASSERT_EQ(records.size(), layout.text.empty() ? 0U : 1U);
        if (!records.empty()) {
            EXPECT_EQ(records[0].buffer, layout.buffer);
            EXPECT_EQ(records[0].priority, layout.priority);
            EXPECT_EQ(records[0].withoutHeader(), layout.text);
        }
    }
}

TEST(Logging, RecordNumbersAreUniqueAcrossThreads) {
    FakePlatform::instance().reset();
    const auto log = [] {
        for (int record = 0; record < 500; ++record) { NERIX_LOG(INF, "%d", record); }
    };
    std::thread threads[] = {std::thread(log), std::thread(log), std::thread(log), std::thread(log)};
    for (std::thread& thread : threads) { thread.join(); }
    std::set<unsigned long> numbers;
    for (const LogRecord& record : FakePlatform::instance().log()) {
        const std::string& text = record.text;
        numbers.insert(std::stoul(text.substr(text.find("][", text.find("][") + 1) + 2)));
    }
    EXPECT_EQ(numbers.size(), 2000U);
    EXPECT_EQ(*numbers.rbegin() - *numbers.begin(), 1999U);
}

TEST(Logging, MaxElapsedKeepsTheLimitOfTheFirstCall) {
    const auto now = std::chrono::steady_clock::now();
    EXPECT_FALSE(Common::Logging::maxElapsed(now, 10'000));
    EXPECT_FALSE(Common::Logging::maxElapsed(now - std::chrono::seconds(9), 1));
    EXPECT_TRUE(Common::Logging::maxElapsed(now - std::chrono::seconds(10), 100'000));
}

TEST(Logging, LongTextsAreCutIntoRecords) {
    const std::string full(768, 'a');
    const std::string lines = std::string(700, 'b') + "\n" + std::string(67, 'c');
    const std::vector<std::tuple<const char*, std::string, std::vector<std::string>>> cases = {
        {"empty", "", {""}},
        {"one record", full, {full}},
        {"as long as the buffer for short texts", std::string(1024, 'a'), {full, std::string(256, 'a')}},
        {"two lines in one record", lines, {lines}},
        {"line of three records", full + full + "a", {full, full, "a"}},
        {"two lines in two records", lines + "c", {std::string(700, 'b'), std::string(68, 'c')}},
        {"line feed at the end", full + "\n", {full}},
        {"empty line", full + "\n\nd", {full, "", "d"}},
        {"line of two records, line of one", full + "a\n" + full, {full, "a", full}},
        {"more bytes than a message may have", std::string(17000, '\n'), std::vector<std::string>(16383)},
    };
    for (const auto& [name, message, expected] : cases) {
        SCOPED_TRACE(name);
        FakePlatform::instance().reset();
        LoggingClass::print(&LoggingClass::printLines, "tag", LoggingClass::INF, "%s", message.c_str());
        std::vector<std::string> texts;
        for (const LogRecord& record : FakePlatform::instance().log()) {
            texts.push_back(record.withoutHeader().substr(sizeof "[INF]"));
        }
        EXPECT_EQ(texts, expected);
    }
}

} // namespace
} // namespace Nerix::Tests
