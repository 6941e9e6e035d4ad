#include "PlatformInterfaces/path_config.h"
#include "PlatformInterfaces/system_info.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/PlatformKeys.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

namespace Nerix::Tests {
namespace {

/// Three answers of the platform; a lookup that fails has none.
struct Answers {
    std::optional<std::string> usbDrives;
    std::optional<int> screenLines;
    std::optional<bool> isTV;
};

struct ConfigurationFile {
    const char* name;
    std::string content;
    Answers answers;
    std::string logged;               ///< a part of the log
    const char* linkTarget = nullptr; ///< if not null, the file is a link to it
};

/// Compares the answers of a process with this platform.ini, and returns what the process logged.
std::string logWith(const ConfigurationFile& file) {
    const TemporaryDirectory home;
    ::setenv("NERIX_PLATFORM_HOME", home.path().c_str(), 1);
    ::unsetenv("NERIX_HOST_LOG");
    if (file.linkTarget != nullptr) {
        boost::filesystem::create_symlink(file.linkTarget, home.path() / "platform.ini");
    } else {
        boost::filesystem::ofstream(home.path() / "platform.ini") << file.content;
    }
    inOwnProcess([&] {
        const char* const drives = path_config_get(USB_DRIVES);
        EXPECT_EQ(drives == nullptr ? std::nullopt : std::optional<std::string>(drives), file.answers.usbDrives);
        int lines = 0;
        const int linesStatus = system_info_get_value_int(SCREEN_LINES, &lines);
        EXPECT_EQ(linesStatus == 0 ? std::optional<int>(lines) : std::nullopt, file.answers.screenLines);
        bool isTV = false;
        const int isTVStatus = system_info_get_value_bool(IS_TV, &isTV);
        EXPECT_EQ(isTVStatus == 0 ? std::optional<bool>(isTV) : std::nullopt, file.answers.isTV);
    });
    return contentOf(home.path() / "log/system.log");
}

TEST(HostConfigurationDeathTest, FileOverridesTheBuiltInAnswers) {
    const std::string numbers = "; comment\n\n[path]\n43=/usb stick\n[system_info]\n203 = 540\n358 = false\n";
    const ConfigurationFile files[] = {
        {"empty", "", {"/media", 1080, true}, ""},
        {"numbers", numbers, {"/usb stick", 540, false}, ""},
        {"names", "[path]\nusb_drives = /u\n[system_info]\nscreen_lines = 7\nis_tv = false\n", {"/u", 7, false}, ""},
    };
    for (const ConfigurationFile& file : files) {
        SCOPED_TRACE(file.name);
        EXPECT_EQ(logWith(file), file.logged);
    }
}

TEST(HostConfigurationDeathTest, FaultsAreLoggedAndFailTheLookup) {
    const Answers none;
    const std::string facts = "[system_info]\n";
    const ConfigurationFile files[] = {
        {"unknown path", "[path]\nusb_drive = /u\n", none,
         "'usb_drive' is neither a number nor one of system_binaries readonly_apps shared_data apps usb_drives\n"},
        {"unknown fact", facts + "a = x\n", none,
         "'a' is neither a number nor one of software_date tv_software submicom_version screen_lines partition_list is_tv "
         "is_zeb_box zeb_box_software\n"},
        {"key twice", "[path]\nusb_drives = /u\n43 = /u\n", none, "[path] usb_drives (43) appears twice"},
        {"line without a key", "[path]\n43 = /x\nnonsense\n", none, "no value for [path] usb_drives (43): "},
        {"unknown section", "[systeminfo]\n203=1\n", none, "'systeminfo' is neither [system_info] nor [path]"},
        {"no section", "203=1\n", none, "'203' is neither"},
        {"too large", "[path]\n43=/x\n" + std::string(1U << 20U, ';'), none, "is larger than 1 MiB"},
        {"unreadable", "", none, "platform.ini: cannot be read: ", "/proc/self/mem"},
        {"dangling link", "", none, "platform.ini: No such file or directory", "/nowhere"},
        {"empty text",
         "[path]\n43=\n",
         {{}, 1080, true},
         "platform.ini: [path] usb_drives (43) is '', not a non-empty text"},
        {"no int", facts + "203=12x\n", {"/media", {}, true}, "[system_info] screen_lines (203) is '12x', not an integer"},
        {"no bool", facts + "358=yes\n", {"/media", 1080, {}}, "[system_info] is_tv (358) is 'yes', not true or false"}};
    for (const ConfigurationFile& file : files) {
        SCOPED_TRACE(file.name);
        EXPECT_PRED2(contains, logWith(file), file.logged);
    }
}

} // namespace
} // namespace Nerix::Tests
