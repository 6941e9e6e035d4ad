#include "Platform/SystemAPI/VconfSystemAPI/IVConf.h"

#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/Report.h"

#include <gtest/gtest.h>

#include <tuple>

namespace Nerix::Tests {
namespace {

using Platform::IVConf;

TEST(IVConf, EachOperationIsOneCallThatItsFailureNames) {
    FakePlatform& platform = FakePlatform::instance();
    platform.settings = {{"int", 7}, {"double", 0.5}, {"text", std::string("held")}, {"yes", true}, {"no", false}};
    EXPECT_EQ(IVConf::getInt("int"), 7);
    EXPECT_EQ(IVConf::getDouble("double"), 0.5);
    EXPECT_EQ(IVConf::getString("text"), "held");
    EXPECT_TRUE(IVConf::getBool("yes"));
    EXPECT_FALSE(IVConf::getBool("no"));

    const std::tuple<std::string, std::function<void(const std::string&)>, FakePlatform::Value> cases[] = {
        {"vconf_set_int", [](const std::string& key) { IVConf::setInt(key, -3); }, -3},
        {"vconf_set_dbl", [](const std::string& key) { IVConf::setDouble(key, 2.5); }, 2.5},
        {"vconf_set_str", [](const std::string& key) { IVConf::setString(key, "new"); }, std::string("new")},
        {"vconf_set_bool", [](const std::string& key) { IVConf::setBool(key, true); }, true},
        {"vconf_set_bool", [](const std::string& key) { IVConf::setBool(key, false); }, false},
        {"vconf_get_int", [](const std::string& key) { IVConf::getInt(key); }, ""},
        {"vconf_get_dbl", [](const std::string& key) { IVConf::getDouble(key); }, ""},
        {"vconf_get_str", [](const std::string& key) { IVConf::getString(key); }, ""},
        {"vconf_get_bool", [](const std::string& key) { IVConf::getBool(key); }, ""},
    };
    for (const auto& [call, operate, written] : cases) {
        platform.reset();
        if (has(call, "_set_")) {
            operate("key");
            ASSERT_EQ(platform.written().size(), 1U);
            EXPECT_EQ(platform.written()[0], std::make_pair(std::string("key"), written));
        }
        platform.failSetting("key", 1);
        const std::string report = reportOf([&operate = operate] { operate("key"); });
        const std::string text = call + " failed while trying to access key: key";
        EXPECT_TRUE(has(report, "VConfException") && has(report, "] = " + text + "\n")) << report;
        EXPECT_EQ(has(report, "tag_errinfo_errorcode*] = -13"), call != "vconf_get_str") << report;
        EXPECT_EQ(platform.logged("[WRN] IVConf.cpp:"), 1U);
        EXPECT_EQ(platform.logged(">" + text), 1U);
    }
}

} // namespace
} // namespace Nerix::Tests
