#include "Tests/Fakes/PrivateMounts.h"

#include <sched.h>
#include <sys/mount.h>

namespace Nerix::Tests {

namespace {

bool mountInOwnNameSpace(const char* source, const char* target, const char* type, unsigned long flags) {
    return ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount(source, target, type, flags, nullptr) == 0;
}

} // namespace

bool mountPrivately(const char* path) { return mountInOwnNameSpace("tmpfs", path, "tmpfs", 0); }

bool hideMountTable() { return mountInOwnNameSpace("/dev/null", "/proc/self/mounts", nullptr, MS_BIND); }

} // namespace Nerix::Tests
