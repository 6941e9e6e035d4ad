#include "Platform/Host/SettingsStore.h"
#include "Platform/Interfaces/vconf.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <thread>

#include <sys/stat.h>

namespace Nerix::Tests {
namespace {

/// One home for all cases: the store of a process stays where it first was.
class SettingsStoreTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        static const TemporaryDirectory directory;
        home = (directory.path() / "deep/home").native();
        ::setenv("NERIX_PLATFORM_HOME", home.c_str(), 1);
    }

    static std::string text(const char* key) {
        const std::unique_ptr<char, void (*)(void*)> value(vconf_get_str(key), &std::free);
        return value ? value.get() : "(none)";
    }

    static std::string home;
};
std::string SettingsStoreTest::home;

TEST_F(SettingsStoreTest, ValuesKeepTheirTypeAndBadKeysAreRefused) {
    EXPECT_EQ(vconf_set_int("db/int", -7), 0);
    EXPECT_EQ(vconf_set_dbl("memory/double", 2.5), 0);
    EXPECT_EQ(vconf_set_bool("db/bool", 1), 0);
    EXPECT_EQ(vconf_set_str("memory/text", ""), 0);
    int number = 99;
    double fraction = 0;
    EXPECT_EQ(vconf_get_int("db/int", &number), 0);
    EXPECT_EQ(number, -7);
    EXPECT_EQ(vconf_get_dbl("memory/double", &fraction), 0);
    EXPECT_EQ(fraction, 2.5);
    EXPECT_EQ(text("memory/text"), "");
    EXPECT_EQ(text("db/int"), "(none)");
    const std::string overLong = "db/" + std::string(600, 'k');
    for (const char* const key :
         {"memory/text", "db/missing", "", overLong.c_str(), static_cast<const char*>(nullptr)}) {
        EXPECT_NE(vconf_get_int(key, &number), 0);
    }
    for (const char* const key : {"", overLong.c_str(), static_cast<const char*>(nullptr)}) {
        EXPECT_NE(vconf_set_str(key, "x"), 0);
    }
    EXPECT_EQ(number, -7) << "failed calls change nothing";
}

TEST_F(SettingsStoreTest, ThreadsWriteAndReadAtOnce) {
    const auto work = [](const char* key) {
        for (int i = 0; i < 200; ++i) {
            int number = -1;
            ASSERT_EQ(vconf_set_int(key, i), 0);
            ASSERT_EQ(vconf_get_int(key, &number), 0);
            ASSERT_EQ(number, i);
        }
    };
    std::thread first(work, "memory/first");
    std::thread second(work, "memory/second");
    first.join();
    second.join();
}

TEST_F(SettingsStoreTest, FullStoreRefusesAndStaysUsable) {
    EXPECT_NE(vconf_set_str("memory/huge", std::string(64UL << 20U, 'x').c_str()), 0);
    EXPECT_EQ(vconf_set_str("memory/small", "y"), 0);
    EXPECT_EQ(text("memory/small"), "y");
    EXPECT_EQ(text("memory/huge"), "(none)");
}

} // namespace
} // namespace Nerix::Tests
