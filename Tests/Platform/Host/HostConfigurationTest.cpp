#include "Platform/Host/HostConfiguration.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/filesystem/fstream.hpp>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>

namespace Nerix::Tests {
namespace {

using Platform::Host::HostConfiguration;

class HostConfigurationTest : public testing::Test {
protected:
    HostConfigurationTest() { ::setenv("NERIX_HOST_LOG", "stderr", 1); }

    HostConfiguration read(const std::string& content) const {
        boost::filesystem::ofstream(m_directory.path() / "platform.ini") << content;
        return HostConfiguration((m_directory.path() / "platform.ini").native());
    }

    /// The answers to three questions, or the error, and the log lines that they left.
    static std::string answers(const HostConfiguration& host) {
        std::string text = "?";
        int number = -1;
        bool flag = false;
        const int errors[] = {host.text("path", 43, text), host.integer("system_info", 203, number),
                              host.boolean("system_info", 358, flag)};
        std::string all;
        all += errors[0] != 0 ? std::strerror(errors[0]) : text;
        all += "|" + (errors[1] != 0 ? std::string(std::strerror(errors[1])) : std::to_string(number));
        all += "|" + (errors[2] != 0 ? std::string(std::strerror(errors[2])) : std::to_string(int{flag}));
        return all;
    }

    const TemporaryDirectory m_directory;
};

TEST_F(HostConfigurationTest, FileOverridesTheBuiltInAnswers) {
    const std::string invalid = std::strerror(EINVAL);
    const std::string builtIn = "/media|1080|1";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", builtIn},
        {"; comment\n\n[path]\n43=/usb stick\n[system_info]\n203 = 540\n358 = false\n", "/usb stick|540|0"},
        {"[path]\n43=\n[system_info]\n203=12x\n358=yes\n", invalid + "|" + invalid + "|" + invalid},
        {"[path]\n43 = /x\nnonsense\n", invalid + "|" + invalid + "|" + invalid},
        {"[path\n", invalid + "|" + invalid + "|" + invalid},
        {"[path]\n43=/a\n43=/b\n", invalid + "|" + invalid + "|" + invalid},
        {"[systeminfo]\n203=1\n", invalid + "|" + invalid + "|" + invalid},
        {"203=1\n", invalid + "|" + invalid + "|" + invalid},
    };
    for (const auto& [content, expected] : cases) {
        EXPECT_EQ(answers(read(content)), expected) << content;
    }
    EXPECT_EQ(answers(HostConfiguration((m_directory.path() / "missing.ini").native())), builtIn);
    EXPECT_EQ(answers(HostConfiguration(m_directory.path().native())),
              invalid + "|" + invalid + "|" + invalid);
}

TEST_F(HostConfigurationTest, FailuresNameFileAndLine) {
    testing::internal::CaptureStderr();
    const HostConfiguration wrong = read("[system_info]\n\n203 = many\n");
    int number = 7;
    EXPECT_NE(wrong.integer("system_info", 203, number), 0);
    EXPECT_NE(wrong.integer("system_info", 999, number), 0);
    EXPECT_EQ(number, 7);
    read("[path]\nnonsense\n");
    const std::string logged = testing::internal::GetCapturedStderr();
    const std::string file = (m_directory.path() / "platform.ini").native();
    EXPECT_NE(logged.find(file + ":3: [system_info] 203 is 'many', not an integer\n"), std::string::npos)
        << logged;
    EXPECT_NE(logged.find("no answer for [system_info] 999: neither built in nor in " + file + "\n"),
              std::string::npos);
    EXPECT_NE(logged.find(file + ":2: "), std::string::npos);
}

} // namespace
} // namespace Nerix::Tests
