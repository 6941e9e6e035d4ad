#include "Common/Logging/Log.h"
#include "Common/Logging/MaxElapsed.h"
#include "Platform/Interfaces/dlog.h"
#include "Tests/Fakes/FakePlatform.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>

namespace Nerix::Tests {
namespace {

using Common::Logging::LoggingClass;

class LoggingTest : public testing::Test {
protected:
    LoggingTest() { FakePlatform::instance().reset(); }

    static std::vector<LogRecord> logged() { return FakePlatform::instance().log(); }

    static std::vector<std::string> recordsOf(const std::string& message) {
        FakePlatform::instance().reset();
        LoggingClass::print(&LoggingClass::printLines, "tag", LoggingClass::INF, "%s", message.c_str());
        std::vector<std::string> texts;
        for (const LogRecord& record : logged()) {
            texts.push_back(record.withoutHeader().substr(sizeof "[INF]"));
        }
        return texts;
    }
};

TEST_F(LoggingTest, EachLevelHasItsBufferPriorityAndName) {
    const struct {
        int level;
        int buffer;
        int priority;
        const char* text;
    } cases[] = {
        {LoggingClass::DBG, 0, 3, "[DBG] x"}, {LoggingClass::INF, 0, 4, "[INF] x"},
        {LoggingClass::WRN, 0, 5, "[WRN] x"}, {LoggingClass::ERR, 2, 5, "[ERR] x"},
        {LoggingClass::FTL, 2, 7, "[FTL] x"}, {7, 2, 6, "[INF] x"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.level);
        FakePlatform::instance().reset();
        LoggingClass::print(&LoggingClass::printLines, "tag",
                            static_cast<LoggingClass::Level>(expected.level), "x");
        ASSERT_EQ(logged().size(), 1U);
        EXPECT_EQ(logged()[0].buffer, expected.buffer);
        EXPECT_EQ(logged()[0].priority, expected.priority);
        EXPECT_EQ(logged()[0].tag, "tag");
        EXPECT_EQ(logged()[0].withoutHeader(), expected.text);
    }
    EXPECT_STREQ(LoggingClass::logLevelToString(LoggingClass::VERBOSE), "VERBOSE");
    EXPECT_STREQ(LoggingClass::logLevelToString(LoggingClass::NONE), "UNKNOWN LEVEL");
}

TEST_F(LoggingTest, RecordCarriesProcessThreadNumberAndPosition) {
    NERIX_LOG(WRN, "before %d", 1);
    LoggingClass::init("Program");
    const int line = __LINE__ + 1;
    NERIX_LOG_STREAM(INF) << "100% of " << 2;
    ASSERT_EQ(logged().size(), 2U);
    EXPECT_EQ(logged()[0].text.substr(0, 3), "[][");
    EXPECT_EQ(logged()[0].tag, "org.corvan.tv.nerix.NERIX");
    const std::string text = logged()[1].text;
    const std::string thread = "[" + std::to_string(::gettid()) + " ";
    EXPECT_EQ(text.substr(0, 17 + thread.size()), "[Program-0.348.0]" + thread);
    EXPECT_EQ(logged()[1].withoutHeader(), "[INF] LoggingTest.cpp:" + std::to_string(line) + ">100% of 2");
}

TEST_F(LoggingTest, LongTextsAreCutIntoRecords) {
    const std::string full(768, 'a');
    const std::string withNewline = std::string(700, 'b') + "\n" + std::string(67, 'c');
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
        {"", {""}},
        {full, {full}},
        {withNewline, {withNewline}},
        {full + "a", {full, "a"}},
        {full + full, {full, full}},
        {withNewline + "c", {std::string(700, 'b'), std::string(68, 'c')}},
        {full + "\n", {full}},
        {full + "\n\nd", {full, "", "d"}},
        {full + "a\n" + full, {full, "a", full}},
    };
    for (const auto& [message, records] : cases) {
        EXPECT_EQ(recordsOf(message), records) << message.size() << " bytes";
    }
}

TEST_F(LoggingTest, ThreadsNeverShareARecordNumber) {
    const auto logMany = [] {
        for (int i = 0; i < 500; ++i) {
            NERIX_LOG(DBG, "%d", i);
        }
    };
    std::thread other(logMany);
    logMany();
    other.join();
    std::set<std::string> numbers;
    for (const LogRecord& record : logged()) {
        const std::size_t begin = record.text.rfind('[', record.text.find("][DBG]"));
        numbers.insert(record.text.substr(begin, record.text.find(']', begin) - begin));
    }
    EXPECT_EQ(numbers.size(), 1000U);
}

TEST(MaxElapsed, FirstCallFixesTheLimit) {
    const auto secondsAgo = [](int seconds) {
        return std::chrono::steady_clock::now() - std::chrono::seconds(seconds);
    };
    EXPECT_FALSE(Common::Logging::maxElapsed(secondsAgo(1), 60'000));
    EXPECT_FALSE(Common::Logging::maxElapsed(secondsAgo(1), 0));
    EXPECT_TRUE(Common::Logging::maxElapsed(secondsAgo(61), 1'000'000));
}

} // namespace
} // namespace Nerix::Tests
