#include "HostPlatform/HostConfiguration.h"

#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>

namespace Nerix::Tests {
namespace {

using Platform::Host::HostConfiguration;

/// The answers to three questions, "!" where there is none.
std::string answersOf(const boost::filesystem::path& file) {
    const HostConfiguration host(file.native());
    std::string all = host.text("path", 43).value_or("!");
    const auto number = host.integer("system_info", 203);
    all += number ? "|" + std::to_string(*number) : "|!";
    const auto flag = host.boolean("system_info", 358);
    all += flag ? *flag ? "|true" : "|false" : "|!";
    return all;
}

TEST(HostConfiguration, FileOverridesTheBuiltInAnswersAndItsFaultsAreLogged) {
    ::setenv("NERIX_HOST_LOG", "stderr", 1);
    const TemporaryDirectory directory;
    const boost::filesystem::path file = directory.path() / "platform.ini";
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
        boost::filesystem::ofstream(file) << content;
        testing::internal::CaptureStderr();
        EXPECT_EQ(answersOf(file), answers) << content.substr(0, 100);
        const std::string log = testing::internal::GetCapturedStderr();
        EXPECT_EQ(log.empty(), parts.empty()) << log;
        for (const std::string& part : parts) { EXPECT_TRUE(has(log, part)) << part << " in " << log; }
    }
}

} // namespace
} // namespace Nerix::Tests
