#include "Platform/Host/HostDirectories.h"

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Nerix::Platform::Host {

namespace {

namespace fs = std::filesystem;

std::optional<fs::path> fromEnvironment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr || *value == '\0' ? std::nullopt : std::optional<fs::path>(value);
}

std::optional<fs::path> absoluteFromEnvironment(const char* name) {
    const auto path = fromEnvironment(name);
    return path && path->is_absolute() ? path : std::nullopt;
}

fs::path homeOfUser() {
    if (const auto home = absoluteFromEnvironment("HOME")) {
        return *home;
    }
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    const int error = ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found);
    if (found == nullptr) {
        throw std::system_error(error != 0 ? error : ENOENT, std::generic_category(),
                                "HOME is not set to an absolute path and the user has no home directory");
    }
    return found->pw_dir;
}

/// Throws unless directory is one, belongs to this user and is not a link: in a directory that everybody may
/// write, such as /dev/shm, somebody else may have come first.
void requireOwn(const fs::path& directory) {
    struct stat status {};
    if (::lstat(directory.c_str(), &status) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot examine " + directory.string());
    }
    if (!S_ISDIR(status.st_mode) || status.st_uid != ::geteuid()) {
        throw std::system_error(S_ISDIR(status.st_mode) ? EPERM : ENOTDIR, std::generic_category(),
                                "not a directory of this user: " + directory.string());
    }
}

fs::path made(const fs::path& directory) {
    fs::path soFar;
    for (const fs::path& element : directory) {
        soFar /= element;
        if (::mkdir(soFar.c_str(), 0700) != 0 && errno != EEXIST) {
            const int error = errno;
            std::error_code ignored;
            // A read-only or automounted parent refuses with its own error although the directory is there.
            if (!fs::is_directory(soFar, ignored)) {
                throw std::system_error(error, std::generic_category(),
                                        "cannot create directory " + soFar.string());
            }
        }
    }
    std::error_code error;
    if (!fs::is_directory(directory, error)) {
        throw std::system_error(error ? error : std::make_error_code(std::errc::not_a_directory),
                                "cannot use directory " + directory.string());
    }
    return directory;
}

} // namespace

fs::path durableDirectory() {
    if (const auto home = fromEnvironment("NERIX_PLATFORM_HOME")) {
        return made(*home);
    }
    if (const auto state = absoluteFromEnvironment("XDG_STATE_HOME")) {
        return made(*state / "nerix");
    }
    return made(homeOfUser() / ".local/state/nerix");
}

fs::path volatileDirectory() {
    if (const auto home = fromEnvironment("NERIX_PLATFORM_HOME")) {
        return made(*home);
    }
    if (const auto runtime = absoluteFromEnvironment("XDG_RUNTIME_DIR")) {
        return made(*runtime / "nerix");
    }
    fs::path shared = made("/dev/shm/nerix-" + std::to_string(::geteuid()));
    requireOwn(shared);
    return shared;
}

} // namespace Nerix::Platform::Host
