#include "HostPlatform/HostDirectories.h"

#include "HostPlatform/PrivateDirectory.h"
#include "PlatformInterfaces/dlog.h"

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace Nerix::Platform::Host {

namespace {

namespace fs = std::filesystem;

std::optional<fs::path> fromEnvironment(const char* name) {
    const char* const value = ::secure_getenv(name);
    return value == nullptr || *value == '\0' ? std::nullopt : std::optional<fs::path>(value);
}

std::optional<fs::path> absoluteFromEnvironment(const char* name) {
    const auto path = fromEnvironment(name);
    return path && path->is_absolute() ? path : std::nullopt;
}

/// A std::system_error whose message ends with advice to the user.
class FailureWithRemedy : public std::system_error {
public:
    explicit FailureWithRemedy(const std::system_error& failure)
        : std::system_error(failure),
          m_message(failure.what() + std::string("; set NERIX_PLATFORM_HOME to a directory of your own")) {}
    const char* what() const noexcept override { return m_message.what(); }

private:
    std::runtime_error m_message; // a string whose copy constructor does not throw
};

/// Returns the result of find. If find throws, adds advice to the message.
template <class Find>
fs::path withRemedy(Find find) {
    try {
        return find();
    } catch (const std::system_error& failure) {
        throw FailureWithRemedy(failure);
    }
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

} // namespace

fs::path durableDirectory() {
    if (const auto home = fromEnvironment("NERIX_PLATFORM_HOME")) {
        return privateDirectory(*home);
    }
    return withRemedy([] {
        const auto state = absoluteFromEnvironment("XDG_STATE_HOME");
        return privateDirectory(state ? *state / "nerix" : homeOfUser() / ".local/state/nerix");
    });
}

fs::path logDirectory() {
    return privateDirectory(durableDirectory() / "log");
}

fs::path volatileDirectory() {
    if (const auto home = fromEnvironment("NERIX_PLATFORM_HOME")) {
        return privateDirectory(*home);
    }
    if (const auto runtime = absoluteFromEnvironment("XDG_RUNTIME_DIR")) {
        return withRemedy([&] { return privateDirectory(*runtime / "nerix"); });
    }
    try {
        return privateDirectory("/dev/shm/nerix-" + std::to_string(::geteuid()));
    } catch (const std::system_error& failure) {
        // Another user may have created the directory first, which must not stop this user.
        fs::path durable = durableDirectory();
        __dlog_print(DLOG_BUFFER_MAIN, DLOG_PRIORITY_WARNING, "nerix.host",
                     "volatile settings are kept in %s: %s", durable.c_str(), failure.what());
        return durable;
    }
}

} // namespace Nerix::Platform::Host
