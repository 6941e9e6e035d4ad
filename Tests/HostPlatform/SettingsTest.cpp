#include "HostPlatform/HostState.h"
#include "HostPlatform/SettingsStore.h"
#include "Platform/SystemAPI/VconfSystemAPI/IVConf.h"
#include "PlatformInterfaces/vconf.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <tuple>

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
    }
    const std::vector<Platform::Host::Setting> all = Platform::Host::HostState::instance().settings().list();
    EXPECT_EQ(all.size(), 10U);
    EXPECT_EQ(all.front().key, "memory/double");
    EXPECT_EQ(all.back().key, "zz/db/yes");
}

TEST(SettingsDeathTest, EachTypeIsKeptInMemoryToo) {
    inOwnProcess([] {
        Platform::Host::HostState::keepInMemory();
        expectEachTypeIsKept();
    });
}

TEST(Settings, EachTypeIsKeptOnBothShelvesAndFailuresNameTheCall) {
    const TemporaryDirectory home;
    ::setenv("NERIX_PLATFORM_HOME", home.path().c_str(), 1);
    ::setenv("NERIX_HOST_LOG", "stderr", 1);
    expectEachTypeIsKept();
    const std::string tooLong(600, 'k');
    const std::tuple<std::string, void (*)(const std::string& key), std::string, int> failures[] = {
        {"vconf_set_int", [](const std::string& key) { IVConf::setInt(key, 1); }, "", EIO},
        {"vconf_set_dbl", [](const std::string& key) { IVConf::setDouble(key, 1); }, tooLong, EIO},
        {"vconf_set_str", [](const std::string& key) { IVConf::setString(key, ""); }, tooLong, EIO},
        {"vconf_set_bool", [](const std::string& key) { IVConf::setBool(key, true); }, tooLong, EIO},
        {"vconf_get_int", [](const std::string& key) { IVConf::getInt(key); }, "zz/db/text", EINVAL},
        {"vconf_get_int", [](const std::string& key) { IVConf::getInt(key); }, "memory/yes", EINVAL},
        {"vconf_get_dbl", [](const std::string& key) { IVConf::getDouble(key); }, "zz/db/int", EINVAL},
        {"vconf_get_str", [](const std::string& key) { IVConf::getString(key); }, "zz/db/int", 0},
        {"vconf_get_bool", [](const std::string& key) { IVConf::getBool(key); }, "db/missing", ENOENT},
    };
    for (const auto& [call, operate, key, code] : failures) {
        testing::internal::CaptureStderr();
        const std::string report = diagnosticsOf([&operate = operate, &key = key] { operate(key); });
        const std::string log = testing::internal::GetCapturedStderr();
        const std::string text = (testing::Message() << call << " failed while trying to access key: " << key).GetString();
        EXPECT_PRED2(contains, report, "VConfException");
        EXPECT_PRED2(contains, report, "] = " + text + "\n");
        EXPECT_EQ(contains(report, "tag_errinfo_errorcode*] = " + std::to_string(code) + "\n"), code != 0) << report;
        EXPECT_PRED2(contains, log, "[WRN] IVConf.cpp:");
        EXPECT_PRED2(contains, log, ">" + text);
    }
    EXPECT_EQ(vconf_set_str(nullptr, ""), EINVAL);
    EXPECT_EQ(vconf_set_str("key", nullptr), EINVAL);
    EXPECT_EQ(vconf_get_int(nullptr, nullptr), EINVAL);
}

} // namespace
} // namespace Nerix::Tests
