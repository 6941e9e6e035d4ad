#include "HostPlatform/HostConfiguration.h"

#include "HostPlatform/EscapedText.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/filesystem/fstream.hpp>
#include <gtest/gtest.h>

#include <cstdlib>

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

TEST(EscapedText, IsOneLineThatATerminalOnlyShows) {
    using Platform::Host::escaped;
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"plain \u00e4\u00c4\u20ac \xff", "plain \u00e4\u00c4\u20ac \xff"},
        {"\n\r\t\\\x1b[m\x7f", "\\n\\r\\t\\\\\\x1b[m\\x7f"},
        {"\xc2\x9b"
         "1m\xc2\xa0",
         "\\xc2\\x9b1m\xc2\xa0"},
        {"\x9b"
         "1m a\x80",
         "\\x9b1m a\\x80"},
    };
    for (const auto& [text, shown] : cases) { EXPECT_EQ(escaped(text), shown); }
}

TEST_F(HostConfigurationTest, FileOverridesTheBuiltInAnswers) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "/media|1080|true"},
        {"; comment\n\n[path]\n43=/usb stick\n[system_info]\n203 = 540\n358 = false\n", "/usb stick|540|false"},
        {"[path]\nusb_drives = /u\n[system_info]\nscreen_lines = 7\nis_tv = false\n", "/u|7|false"},
        {"[path]\nusb_drive = /u\n", "!|!|!"},
        {"[path]\nusb_drives = /u\n43 = /u\n", "!|!|!"},
        {"[path]\n43=\n[system_info]\n203=12x\n358=yes\n", "!|!|!"},
        {"[path]\n43 = /x\nnonsense\n", "!|!|!"},
        {"[path\n", "!|!|!"},
        {"[path]\n43=/a\n43=/b\n", "!|!|!"},
        {"[systeminfo]\n203=1\n", "!|!|!"},
        {"203=1\n", "!|!|!"},
        {"[path]\n43=/x\n" + std::string(1U << 20U, ';'), "!|!|!"},
    };
    for (const auto& [content, expected] : cases) { EXPECT_EQ(answersOf(content), expected) << content.substr(0, 100); }
}

} // namespace
} // namespace Nerix::Tests
