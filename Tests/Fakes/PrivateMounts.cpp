#include "Tests/Fakes/PrivateMounts.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace Nerix::Tests {

namespace {

bool enterOwnMounts(std::string& reason) {
    const uid_t user = ::geteuid();
    const gid_t group = ::getegid();
    if (::unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0) {
        reason = std::string("unshare: ") + std::strerror(errno);
        return false;
    }
    if (user != 0) {
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/setgroups") << "deny"; // the condition for what follows
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    }
    if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        reason = std::string("mount on /: ") + std::strerror(errno);
        return false;
    }
    return true;
}

} // namespace

bool mountPrivately(const std::string& path, std::string& reason) {
    if (!enterOwnMounts(reason)) {
        return false;
    }
    if (::mount("tmpfs", path.c_str(), "tmpfs", 0, nullptr) != 0) {
        reason = "mount on " + path + ": " + std::strerror(errno);
        return false;
    }
    return true;
}

bool hideMountTable() {
    std::string reason;
    return enterOwnMounts(reason) &&
           ::mount("/dev/null", "/proc/self/mounts", nullptr, MS_BIND, nullptr) == 0;
}

} // namespace Nerix::Tests
