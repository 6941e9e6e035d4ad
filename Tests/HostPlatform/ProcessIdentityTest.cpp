#include "HostPlatform/ProcessIdentity.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace Nerix::Tests {

using Platform::Host::ProcessIdentity::isGone;
using Platform::Host::ProcessIdentity::ofThisProcess;

TEST(ProcessIdentity, IsGoneOnlyIfTheProcessCannotExist) {
    std::string boot;
    std::string nameSpace;
    std::string process;
    std::string start;
    std::istringstream(ofThisProcess()) >> boot >> nameSpace >> process >> start;
    const std::string none = " 4194305 "; // more than the highest process id
    const struct {
        const char* name;
        std::string identity;
        bool isGone;
    } cases[] = {
        {"this process", ofThisProcess(), false},
        {"no process", boot + ' ' + nameSpace + none + start, true},
        {"another process of the same number", ofThisProcess() + "0", true},
        {"before a restart", "x" + ofThisProcess(), true},
        {"in another container", boot + " pid:[1]" + none + start, false},
        {"unknown", "", false},
    };
    for (const auto& each : cases) { EXPECT_EQ(isGone(each.identity), each.isGone) << each.name << ": " << each.identity; }
}

TEST(ProcessIdentity, ZombieIsGone) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const std::string identity = ofThisProcess();
        ::_exit(::write(ends[1], identity.data(), identity.size()) > 0 ? 0 : 1);
    }
    siginfo_t ended{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT), 0);
    char identity[300];
    const ssize_t size = ::read(ends[0], identity, sizeof identity);
    EXPECT_TRUE(isGone(std::string(identity, static_cast<std::size_t>(size))));
    ::waitpid(child, nullptr, 0);
    ::close(ends[0]);
    ::close(ends[1]);
}

} // namespace Nerix::Tests
