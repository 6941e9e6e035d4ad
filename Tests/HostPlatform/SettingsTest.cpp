#include "HostPlatform/HostState.h"
#include "HostPlatform/SettingsStore.h"
#include "Platform/SystemAPI/VconfSystemAPI/IVConf.h"
#include "PlatformInterfaces/vconf.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/filesystem/directory.hpp>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <regex>

namespace Nerix::Tests {
namespace {

using Platform::IVConf;

void expectEachTypeIsKept() {
    for (const std::string prefix : {"memory/", "zz/db/"}) {
        IVConf::setInt(prefix + "int", -7);
        IVConf::setDouble(prefix + "double", 0.5);
        IVConf::setString(prefix + "text", "text");
        IVConf::setBool(prefix + "yes", true);
        IVConf::setBool(prefix + "no", false);
        EXPECT_EQ(IVConf::getInt(prefix + "int"), -7);
        EXPECT_EQ(IVConf::getDouble(prefix + "double"), 0.5);
        EXPECT_EQ(IVConf::getString(prefix + "text"), "text");
        EXPECT_TRUE(IVConf::getBool(prefix + "yes"));
        EXPECT_FALSE(IVConf::getBool(prefix + "no"));
        int flag = 0;
        EXPECT_EQ(vconf_get_bool((prefix + "yes").c_str(), &flag), 0);
        EXPECT_EQ(flag, 1);
        EXPECT_EQ(vconf_set_bool((prefix + "yes").c_str(), 2), 0);
        EXPECT_TRUE(IVConf::getBool(prefix + "yes")) << "any number but 0";
    }
    const std::vector<Platform::Host::Setting> all = Platform::Host::HostState::instance().settings().list().settings;
    EXPECT_EQ(all.size(), 10U);
    EXPECT_EQ(all.front().key, "memory/double");
    EXPECT_EQ(all.back().key, "zz/db/yes");
}

TEST(SettingsDeathTest, StoresEveryTypeInMemory) {
    inOwnProcess([] {
        Platform::Host::HostState::keepInMemory();
        expectEachTypeIsKept();
    });
}

/// The host's own store, in a directory of the test.
class Settings : public testing::Test {
protected:
    void SetUp() override {
        ::setenv("NERIX_PLATFORM_HOME", m_home.path().c_str(), 1);
        ::setenv("NERIX_HOST_LOG", "stderr", 1);
    }

    const TemporaryDirectory m_home;
};

TEST_F(Settings, StoresEveryType) { expectEachTypeIsKept(); }

struct FailingCall {
    const char* name;
    void (*call)(const std::string& key);
    std::string key;
    std::optional<int> code; ///< vconf_get_str returns none
};

TEST_F(Settings, FailuresNameTheCallAndTheKey) {
    IVConf::setInt("db/int", 1);
    IVConf::setString("db/text", "text");
    IVConf::setBool("memory/yes", true);
    const std::string tooLong(600, 'k');
    const FailingCall failures[] = {
        {"vconf_set_int", [](const std::string& key) { IVConf::setInt(key, 1); }, "", EIO},
        {"vconf_set_dbl", [](const std::string& key) { IVConf::setDouble(key, 1); }, tooLong, EIO},
        {"vconf_set_str", [](const std::string& key) { IVConf::setString(key, ""); }, tooLong, EIO},
        {"vconf_set_str", [](const std::string& key) { IVConf::setString(key, std::string(1U << 20U, 'x')); }, "db/k", EIO},
        {"vconf_set_bool", [](const std::string& key) { IVConf::setBool(key, true); }, tooLong, EIO},
        {"vconf_get_int", [](const std::string& key) { IVConf::getInt(key); }, "db/text", EINVAL},
        {"vconf_get_int", [](const std::string& key) { IVConf::getInt(key); }, "memory/yes", EINVAL},
        {"vconf_get_dbl", [](const std::string& key) { IVConf::getDouble(key); }, "db/int", EINVAL},
        {"vconf_get_str", [](const std::string& key) { IVConf::getString(key); }, "db/int", {}},
        {"vconf_get_bool", [](const std::string& key) { IVConf::getBool(key); }, "db/missing", ENOENT},
    };
    for (const FailingCall& failing : failures) {
        SCOPED_TRACE(testing::Message() << failing.name << " of '" << failing.key << "'");
        testing::internal::CaptureStderr();
        const std::string report = diagnosticsOf([&] { failing.call(failing.key); });
        const std::string log = testing::internal::GetCapturedStderr();
        const std::string text = failing.name + (" failed while trying to access key: " + failing.key);
        EXPECT_PRED2(contains, report, "VConfException");
        EXPECT_PRED2(contains, report, "] = " + text + "\n");
        std::smatch code;
        std::regex_search(report, code, std::regex("tag_errinfo_errorcode\\*\\] = (.*)\n"));
        EXPECT_EQ(code.str(1), failing.code ? std::to_string(*failing.code) : "") << report;
        EXPECT_PRED2(contains, log, "[WRN] IVConf.cpp:");
        EXPECT_PRED2(contains, log, ">" + text);
    }
}

TEST_F(Settings, KeysOfAnyBytesAreKept) {
    const std::vector<std::string> keys = {"%", "+", ".", "..", "/", "A\n", "a+b/c", "\xff"};
    for (const std::string& key : keys) { IVConf::setString(key, key); }
    std::vector<std::string> listed;
    for (const auto& setting : Platform::Host::HostState::instance().settings().list().settings) {
        EXPECT_EQ(setting.bytes, setting.key);
        listed.push_back(setting.key);
    }
    EXPECT_EQ(listed, keys);
}

TEST_F(Settings, DirectoryInPlaceOfASettingStays) {
    IVConf::setInt("memory/number", 1);
    using Directory = boost::filesystem::directory_iterator;
    const boost::filesystem::path file = Directory(Directory(m_home.path())->path())->path();
    EXPECT_EQ(boost::filesystem::status(file).permissions(), 0600);
    boost::filesystem::remove(file);
    boost::filesystem::create_directory(file);
    EXPECT_EQ(vconf_set_int("memory/number", 2), EIO);
    EXPECT_TRUE(boost::filesystem::is_directory(file));
    EXPECT_EQ(std::distance(Directory(file.parent_path()), Directory()), 1) << "no temporary file";
}

TEST_F(Settings, NullIsRejected) {
    EXPECT_EQ(vconf_set_str(nullptr, ""), EINVAL);
    EXPECT_EQ(vconf_set_str("key", nullptr), EINVAL);
    EXPECT_EQ(vconf_get_int(nullptr, nullptr), EINVAL);
}

} // namespace
} // namespace Nerix::Tests
