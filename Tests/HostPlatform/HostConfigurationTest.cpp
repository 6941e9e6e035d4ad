#include "HostPlatform/HostState.h"
#include "PlatformInterfaces/path_config.h"
#include "PlatformInterfaces/system_info.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>

namespace Nerix::Tests {
namespace {

/// Three platform lookups, joined by "|"; "!" for one that fails.
std::string answers() {
    const char* const drives = path_config_get(43);
    int lines = 0;
    bool isTV = false;
    std::string all = drives == nullptr ? "!" : drives;
    all += system_info_get_value_int(203, &lines) == 0 ? "|" + std::to_string(lines) : "|!";
    all += system_info_get_value_bool(358, &isTV) != 0 ? "|!" : isTV ? "|true" : "|false";
    return all;
}

TEST(HostConfigurationDeathTest, FileOverridesTheBuiltInAnswersAndItsFaultsAreLogged) {
    const TemporaryDirectory home;
    ::setenv("NERIX_PLATFORM_HOME", home.path().c_str(), 1);
    ::unsetenv("NERIX_HOST_LOG");
    const std::pair<std::string, std::string> cases[] = {
        // what stands in the file; the answers, or what the log says
        {"", "/media|1080|true"},
        {"; comment\n\n[path]\n43=/usb stick\n[system_info]\n203 = 540\n358 = false\n", "/usb stick|540|false"},
        {"[path]\nusb_drives = /u\n[system_info]\nscreen_lines = 7\nis_tv = false\n", "/u|7|false"},
        {"[path]\nusb_drive = /u\n", "'usb_drive' is neither a number nor one of system_binaries readonly_apps shared_data "
                                     "apps usb_drives\n"},
        {"[system_info]\na = x\n", "'a' is neither a number nor one of software_date tv_software submicom_version "
                                   "screen_lines partition_list is_tv is_zeb_box zeb_box_software\n"},
        {"[path]\nusb_drives = /u\n43 = /u\n", "[path] usb_drives (43) appears twice"},
        {"[path]\n43=\n", "[path] usb_drives (43) is '', not a text"},
        {"[system_info]\n203=12x\n", "[system_info] screen_lines (203) is '12x', not an integer"},
        {"[system_info]\n358=yes\n", "platform.ini: [system_info] is_tv (358) is 'yes', not true or false"},
        {"[path]\n43 = /x\nnonsense\n", "no value for [path] usb_drives (43): "},
        {"[systeminfo]\n203=1\n", "'systeminfo' is neither [system_info] nor [path]"},
        {"203=1\n", "'203' is neither"},
        {"[path]\n43=/x\n" + std::string(1U << 20U, ';'), "is larger than 1 MiB"},
    };
    for (const auto& [content, expected] : cases) {
        boost::filesystem::ofstream(home.path() / "platform.ini") << content;
        boost::filesystem::remove_all(home.path() / "log");
        const bool isFaulty = !contains(expected, "|");
        inOwnProcess(
            [&, &expected = expected] { EXPECT_TRUE(isFaulty ? contains(answers(), "!") : answers() == expected); });
        const std::string log = contentOf(home.path() / "log/system.log");
        EXPECT_TRUE(isFaulty ? contains(log, expected) : log.empty()) << log;
    }
}

TEST(HostConfigurationDeathTest, EachQuestionHasABuiltInAnswer) {
    inOwnProcess([] {
        Platform::Host::HostState::keepInMemory();
        std::string all;
        for (const int key : {8, 128, 133, 203, 301, 358, 359, 378}) {
            char* text = nullptr;
            EXPECT_EQ(system_info_get_value_string(key, &text), 0) << key;
            (all += text) += ' ';
            std::free(text);
        }
        for (const int variable : {6, 20, 25, 31, 43}) { (all += path_config_get(variable)) += ' '; }
        EXPECT_EQ(all, "2026-01-01 T-HOSTH-1000.0 1.0 1080 /etc/partition.txt true false Z-HOSTH-1000.0 "
                       "/usr/bin /usr/apps /usr/share /opt/usr/apps /media ");
    });
}

} // namespace
} // namespace Nerix::Tests
