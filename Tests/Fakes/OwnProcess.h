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

/// Moves the process to a private mount namespace and mounts there. Returns false if the process may not do that.
inline bool mountPrivately(const char* source, const char* target, const char* type, unsigned long flags) {
    return ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount(source, target, type, flags, nullptr) == 0;
}

/// Mounts an empty file system privately at path, which must exist.
inline bool mountPrivately(const char* path) { return mountPrivately("tmpfs", path, "tmpfs", 0); }

/// Replaces the process's mount table by an empty one, so that its runs find none of the machine's drives.
inline bool hideMountTable() { return mountPrivately("/dev/null", "/proc/self/mounts", nullptr, MS_BIND); }

/// Runs body and exits. If body adds failures to the test, prints them, because gtest does not do so in a child process,
/// and exits with status 1.
[[noreturn]] inline void runAndExit(const std::function<void()>& body) {
    const testing::TestResult& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    int part = result.total_part_count();
    int status = 0;
    for (body(); part < result.total_part_count(); ++part) {
        std::cerr << result.GetTestPartResult(part);
        if (result.GetTestPartResult(part).failed()) { status = 1; }
    }
    std::exit(status);
}

/// Runs body in a child process, for process-wide state that can be set only once. Failures in the child fail the test.
inline void inOwnProcess(const std::function<void()>& body) {
    EXPECT_EXIT(runAndExit(body), testing::ExitedWithCode(0), "");
}

/// Returns true if attempt returns true in a child process.
inline bool succeedsInChild(bool (*attempt)()) {
    const pid_t child = ::fork();
    if (child == 0) { ::_exit(attempt() ? 0 : 1); }
    int status = 1;
    return ::waitpid(child, &status, 0) == child && status == 0;
}

/// Runs body like inOwnProcess, with an empty file system at /mnt, where devices keep the product's data. Skips the test
/// if there are no private mounts.
inline void withOwnMnt(const std::function<void()>& body) {
    static const bool mayMount = succeedsInChild([] { return mountPrivately("/mnt"); });
    if (!mayMount) { GTEST_SKIP() << "no private mounts on this machine"; }
    inOwnProcess([&] {
        EXPECT_TRUE(mountPrivately("/mnt"));
        body();
    });
}

} // namespace Nerix::Tests
