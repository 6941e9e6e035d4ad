#pragma once

#include <sched.h>
#include <sys/mount.h>

namespace Nerix::Tests {

/// Gives the process a name space of its own for mounts and mounts there; nothing outside the process sees it. False where
/// the machine or the user may not do that.
inline bool mountPrivately(const char* source, const char* target, const char* type, unsigned long flags) {
    return ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount(source, target, type, flags, nullptr) == 0;
}

/// An empty directory in memory at path, which must exist.
inline bool mountPrivately(const char* path) { return mountPrivately("tmpfs", path, "tmpfs", 0); }

/// Lets the process read an empty mount table, so that its runs find none of the machine's drives.
inline bool hideMountTable() { return mountPrivately("/dev/null", "/proc/self/mounts", nullptr, MS_BIND); }

} // namespace Nerix::Tests
