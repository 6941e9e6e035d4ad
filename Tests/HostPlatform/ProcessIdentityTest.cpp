#include "HostPlatform/ProcessIdentity.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace Nerix::Tests {
namespace {

namespace ProcessIdentity = Platform::Host::ProcessIdentity;

struct Words {
    std::string boot;
    std::string nameSpace;
    std::string process;
    std::string start;

    std::string identity() const { return boot + ' ' + nameSpace + ' ' + process + ' ' + start; }
};

Words wordsOfThisProcess() {
    Words words;
    std::istringstream(ProcessIdentity::ofThisProcess()) >> words.boot >> words.nameSpace >> words.process >> words.start;
    return words;
}

TEST(ProcessIdentity, IsGoneOnlyIfTheProcessCannotExist) {
    const Words own = wordsOfThisProcess();
    const std::string noProcess = "4194305"; // more than the highest process id
    const struct {
        const char* name;
        std::string identity;
        bool isGone;
    } cases[] = {
        {"this process", own.identity(), false},
        {"no process", Words{own.boot, own.nameSpace, noProcess, own.start}.identity(), true},
        {"another process of the same number", Words{own.boot, own.nameSpace, own.process, own.start + "0"}.identity(), true},
        {"before a restart", Words{"x" + own.boot, own.nameSpace, own.process, own.start}.identity(), true},
        {"in another container", Words{own.boot, "pid:[1]", noProcess, own.start}.identity(), false},
        {"unknown", "", false},
        {"incomplete", own.boot, false},
    };
    for (const auto& [name, identity, isGone] : cases) {
        EXPECT_EQ(ProcessIdentity::isGone(identity), isGone) << name << ": " << identity;
    }
}

TEST(ProcessIdentity, ZombieIsGone) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const std::string identity = ProcessIdentity::ofThisProcess();
        ::_exit(::write(ends[1], identity.data(), identity.size()) > 0 ? 0 : 1);
    }
    siginfo_t ended{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT), 0);
    char identity[300];
    const ssize_t size = ::read(ends[0], identity, sizeof identity);
    ASSERT_GT(size, 0);
    EXPECT_TRUE(ProcessIdentity::isGone(std::string(identity, static_cast<std::size_t>(size))));
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(ProcessIdentity::isGone(std::string(identity, static_cast<std::size_t>(size))));
    ::close(ends[0]);
    ::close(ends[1]);
}

} // namespace
} // namespace Nerix::Tests
