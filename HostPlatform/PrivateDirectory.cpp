#include "HostPlatform/PrivateDirectory.h"

#include <cerrno>
#include <list>
#include <string>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace Nerix::Platform::Host {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void throwSystemError(int error, const std::string& reason) {
    throw std::system_error(error, std::generic_category(), reason);
}

struct stat statusOf(const fs::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        throwSystemError(errno, "cannot examine " + path.string());
    }
    return status;
}

/// Creates a directory at path if nothing is there, and returns the status of path.
struct stat createIfMissing(const fs::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0) {
        return status;
    }
    if (errno == ENOENT && ::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
        throwSystemError(errno, "cannot create directory " + path.string());
    }
    return statusOf(path);
}

/// Returns true for this user and for root, who could do anything anyway. In a user namespace without a root
/// mapping, the owner of /proc is treated as root.
bool isTrusted(uid_t owner) {
    struct stat proc {};
    return owner == ::geteuid() || owner == 0 || (::lstat("/proc", &proc) == 0 && owner == proc.st_uid);
}

void requireTrustedPathElement(const fs::path& path, const struct stat& status) {
    if (!isTrusted(status.st_uid)) {
        throwSystemError(EPERM, path.string() + " belongs to another user");
    }
    // Group write access is accepted: with per-user groups, home directories are often group-writable.
    if (S_ISDIR(status.st_mode) && (status.st_mode & S_IWOTH) != 0 && (status.st_mode & S_ISVTX) == 0) {
        throwSystemError(EPERM, path.string() + " is writable by other users");
    }
    if (!S_ISDIR(status.st_mode) && !S_ISLNK(status.st_mode)) {
        throwSystemError(ENOTDIR, "cannot use " + path.string());
    }
}

} // namespace

fs::path privateDirectory(const fs::path& directory) {
    constexpr int maxLinks = 40; // the kernel's limit
    int links = 0;
    fs::path resolved = "/";
    const fs::path absolute = fs::absolute(directory);
    std::list<fs::path> remaining(absolute.begin(), absolute.end());
    while (!remaining.empty()) {
        const fs::path element = remaining.front();
        remaining.pop_front();
        if (element.empty() || element == ".") {
            continue;
        }
        const fs::path next = element == ".." ? resolved.parent_path() : resolved / element;
        const struct stat status = createIfMissing(next);
        requireTrustedPathElement(next, status);
        if (!S_ISLNK(status.st_mode)) {
            resolved = next;
        } else if (++links > maxLinks) {
            throwSystemError(ELOOP, "cannot use directory " + absolute.string());
        } else {
            const fs::path target = fs::read_symlink(next);
            remaining.insert(remaining.begin(), target.begin(), target.end());
        }
    }
    const struct stat status = statusOf(resolved);
    if (status.st_uid != ::geteuid() || (status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        throwSystemError(EPERM,
                         resolved.string() + " must belong to this user and be writable by nobody else");
    }
    return resolved;
}

} // namespace Nerix::Platform::Host
