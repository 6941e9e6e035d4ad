#include "HostPlatform/SettingsStore.h"
#include "HostPlatform/HostState.h"
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
    for (const std::string shelf : {"memory/", "zz/db/"}) {
        IVConf::setInt(shelf + "int", -7);
        IVConf::setDouble(shelf + "double", 0.5);
        IVConf::setString(shelf + "text", "text");
        IVConf::setBool(shelf + "yes", true);
        IVConf::setBool(shelf + "no", false);
        EXPECT_EQ(IVConf::getInt(shelf + "int"), -7);
        EXPECT_EQ(IVConf::getDouble(shelf + "double"), 0.5);
        EXPECT_EQ(IVConf::getString(shelf + "text"), "text");
        EXPECT_TRUE(IVConf::getBool(shelf + "yes") && !IVConf::getBool(shelf + "no"));
        int flag = 0;
        EXPECT_EQ(vconf_get_bool((shelf + "yes").c_str(), &flag) + flag, 1);
    }
    const std::vector<Platform::Host::Setting> all = Platform::Host::HostState::instance().settings().list();
    EXPECT_EQ(all.size(), 10U);
    EXPECT_EQ(all.back().key + all.front().key, "zz/db/yesmemory/double");
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
        EXPECT_TRUE(contains(report, "VConfException") && contains(report, "] = " + text + "\n")) << report;
        EXPECT_EQ(contains(report, "tag_errinfo_errorcode*] = " + std::to_string(code) + "\n"), code != 0) << report;
        EXPECT_TRUE(contains(log, "[WRN] IVConf.cpp:") && contains(log, ">" + text)) << log;
    }
    EXPECT_NE(vconf_set_str(nullptr, "") * vconf_set_str("key", nullptr) * vconf_get_int(nullptr, nullptr), 0);
}

} // namespace
} // namespace Nerix::Tests
