#include "HostPlatform/HostConfiguration.h"

#include "PlatformInterfaces/vconf.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/filesystem/fstream.hpp>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <tuple>

namespace Nerix::Tests {
namespace {

using Platform::Host::HostConfiguration;

class HostConfigurationTest : public testing::Test {
protected:
    HostConfigurationTest() { ::setenv("NERIX_HOST_LOG", "stderr", 1); }

    /// The answers to three questions, "!" where there is none.
    std::string answersOf(const std::string& content) const {
        boost::filesystem::ofstream(m_file) << content;
        const HostConfiguration host(m_file.native());
        std::string all = host.text("path", 43).value_or("!");
        const auto number = host.integer("system_info", 203);
        all += number ? "|" + std::to_string(*number) : "|!";
        const auto flag = host.boolean("system_info", 358);
        all += flag ? *flag ? "|true" : "|false" : "|!";
        return all;
    }

    const TemporaryDirectory m_directory;
    const boost::filesystem::path m_file = m_directory.path() / "platform.ini";
};

TEST_F(HostConfigurationTest, FileOverridesTheBuiltInAnswersAndItsFaultsAreLogged) {
    const std::tuple<std::string, std::string, std::vector<std::string>> cases[] = {
        // file, answers, parts of the log
        {"", "/media|1080|true", {}},
        {"; comment\n\n[path]\n43=/usb stick\n[system_info]\n203 = 540\n358 = false\n", "/usb stick|540|false", {}},
        {"[path]\nusb_drives = /u\n[system_info]\nscreen_lines = 7\nis_tv = false\n", "/u|7|false", {}},
        {"[path]\nusb_drive = /u\n", "!|!|!", {"'usb_drive' is neither a number nor one of system_binaries readonly_apps"}},
        {"[path]\nusb_drives = /u\n43 = /u\n", "!|!|!", {"[path] usb_drives (43) is there twice"}},
        {"[path]\n43=\n[system_info]\n203=12x\n358=yes\n",
         "!|!|!",
         {"[path] usb_drives (43) is '', not a text", "[system_info] screen_lines (203) is '12x', not an integer",
          "platform.ini: [system_info] is_tv (358) is 'yes', not true or false"}},
        {"[path]\n43 = /x\nnonsense\n", "!|!|!", {"platform.ini:3: ", "no answer for [path] usb_drives (43): "}},
        {"[path\n", "!|!|!", {"platform.ini:1: "}},
        {"[path]\n43=/a\n43=/b\n", "!|!|!", {"platform.ini:3: "}},
        {"[systeminfo]\n203=1\n", "!|!|!", {"'systeminfo' is neither [system_info] nor [path]"}},
        {"203=1\n", "!|!|!", {"'203' is neither"}},
        {"[path]\n43=/x\n" + std::string(1U << 20U, ';'), "!|!|!", {"is larger than 1 MiB"}},
    };
    for (const auto& [content, answers, parts] : cases) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(answersOf(content), answers) << content.substr(0, 100);
        const std::string log = testing::internal::GetCapturedStderr();
        EXPECT_EQ(log.empty(), parts.empty()) << log;
        for (const std::string& part : parts) { EXPECT_TRUE(has(log, part)) << part << " in " << log; }
    }
}

TEST_F(HostConfigurationTest, StoreHoldsEachTypeOnBothShelves) {
    ::setenv("NERIX_PLATFORM_HOME", m_directory.path().c_str(), 1);
    for (const std::string shelf : {"memory/", "db/"}) {
        const auto key = [&](const char* name) { return shelf + name; };
        EXPECT_EQ(vconf_set_int(key("int").c_str(), -7) + vconf_set_dbl(key("double").c_str(), 0.5) +
                      vconf_set_bool(key("bool").c_str(), 1) + vconf_set_str(key("text").c_str(), "text"),
                  0);
        int number = 0;
        int flag = 0;
        double fraction = 0;
        EXPECT_EQ(vconf_get_int(key("int").c_str(), &number) + vconf_get_bool(key("bool").c_str(), &flag) +
                      vconf_get_dbl(key("double").c_str(), &fraction),
                  0);
        EXPECT_TRUE(number == -7 && flag == 1 && fraction == 0.5);
        const std::unique_ptr<char, void (*)(void*)> text(vconf_get_str(key("text").c_str()), &std::free);
        EXPECT_STREQ(text.get(), "text");
        for (const std::string& bad : {key("text"), key("bool"), key("missing"), std::string(), std::string(600, 'k')}) {
            EXPECT_NE(vconf_get_int(bad.c_str(), &number), 0) << bad;
        }
        EXPECT_EQ(vconf_get_str(key("int").c_str()), nullptr);
        EXPECT_EQ(number, -7);
    }
    EXPECT_NE(vconf_set_int("", 1), 0);
    EXPECT_NE(vconf_set_str(std::string(600, 'k').c_str(), ""), 0);
    EXPECT_NE(vconf_set_str(nullptr, "") * vconf_set_str("key", nullptr) * vconf_get_int(nullptr, nullptr), 0);
}

} // namespace
} // namespace Nerix::Tests
