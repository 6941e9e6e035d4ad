#include "PlatformInterfaces/dlog.h"
#include "PlatformInterfaces/path_config.h"
#include "PlatformInterfaces/system_info.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>

namespace Nerix::Tests {
namespace {

/// The answers to three questions, "!" where there is none.
std::string answers() {
    const char* const drives = path_config_get(43);
    int lines = 0;
    bool isTV = false;
    std::string all = drives == nullptr ? "!" : drives;
    all += system_info_get_value_int(203, &lines) == 0 ? "|" + std::to_string(lines) : "|!";
    all += system_info_get_value_bool(358, &isTV) != 0 ? "|!" : isTV ? "|true" : "|false";
    return all;
}

TEST(HostConfiguration, FileOverridesTheBuiltInAnswersAndItsFaultsAreLogged) {
    const TemporaryDirectory home;
    ::setenv("NERIX_PLATFORM_HOME", home.path().c_str(), 1);
    ::unsetenv("NERIX_HOST_LOG");
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
    for (const auto& [content, expected, parts] : cases) {
        boost::filesystem::ofstream(home.path() / "platform.ini") << content;
        boost::filesystem::remove_all(home.path() / "log");
        inOwnProcess([&expected = expected] { EXPECT_EQ(answers(), expected); });
        const std::string log = contentOf(home.path() / "log/main.log") + contentOf(home.path() / "log/system.log");
        EXPECT_EQ(log.empty(), parts.empty()) << log;
        for (const std::string& part : parts) { EXPECT_TRUE(has(log, part)) << part << " in " << log; }
    }
}

TEST(SystemLog, LongTextIsWhole) {
    ::setenv("NERIX_HOST_LOG", "stderr", 1);
    const std::string text(1024, 'x');
    testing::internal::CaptureStderr();
    EXPECT_EQ(__dlog_print(DLOG_BUFFER_MAIN, DLOG_PRIORITY_ERROR, "tag", "%s", text.c_str()), 1024);
    EXPECT_TRUE(has(testing::internal::GetCapturedStderr(), "E tag " + text + "\n"));
}

} // namespace
} // namespace Nerix::Tests
