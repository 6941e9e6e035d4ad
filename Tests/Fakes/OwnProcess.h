#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Nerix::Tests {

/// Moves the process to a private mount namespace and mounts there. False where the machine or the user may not do that.
inline bool mountPrivately(const char* source, const char* target, const char* type, unsigned long flags) {
    return ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount(source, target, type, flags, nullptr) == 0;
}

/// An empty directory in memory at path, which must exist.
inline bool mountPrivately(const char* path) { return mountPrivately("tmpfs", path, "tmpfs", 0); }

/// Lets the process read an empty mount table, so that its runs find none of the machine's drives.
inline bool hideMountTable() { return mountPrivately("/dev/null", "/proc/self/mounts", nullptr, MS_BIND); }

/// Runs body in a child process, for process-wide state that can be set only once. Failures in the child fail the test.
inline void inOwnProcess(const std::function<void()>& body) {
    EXPECT_EXIT(
        {
            body();
            const testing::TestResult& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
            for (int part = 0; part < result.total_part_count(); ++part) { // nobody else prints them there
                std::cerr << result.GetTestPartResult(part);
            }
            std::exit(testing::Test::HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

/// The same, with an empty /mnt in memory, where the product's data lives on a device.
inline void withOwnMnt(const std::function<void()>& body) {
    static const bool mayMount = [] {
        const pid_t child = ::fork();
        if (child == 0) { ::_exit(mountPrivately("/mnt") ? 0 : 1); }
        int status = 1;
        return ::waitpid(child, &status, 0) == child && status == 0;
    }();
    if (!mayMount) { GTEST_SKIP() << "no private mounts on this machine"; }
    inOwnProcess([&] {
        EXPECT_TRUE(mountPrivately("/mnt"));
        body();
    });
}

} // namespace Nerix::Tests
