#include "HostPlatform/ProcessIdentity.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

#include <unistd.h>

namespace Nerix::Platform::Host::ProcessIdentity {

namespace {

struct Identity {
    std::string boot;
    std::string nameSpace;
    std::string process;
    std::string start; ///< in clock ticks since boot; distinguishes reused process ids

    bool isKnown() const { return !boot.empty() && !nameSpace.empty() && !start.empty(); }
};

/// Returns the start time of a process, or an empty string if the process is gone or a zombie.
std::string startOf(const std::string& process) {
    std::ifstream file("/proc/" + process + "/stat");
    const std::string content(std::istreambuf_iterator<char>(file), {});
    // Skips the process name, which ends at the last parenthesis. It may contain spaces, parentheses and line
    // feeds.
    std::istringstream fields(content.substr(content.rfind(')') + 1));
    constexpr int startField = 20; // the state is the first after the name
    std::string field;
    for (int number = 1; number <= startField && fields >> field; ++number) {
        if (number == 1 && (field == "Z" || field == "X")) {
            return "";
        }
    }
    return fields ? field : "";
}

Identity identityOfThisProcess() {
    Identity identity;
    std::ifstream("/proc/sys/kernel/random/boot_id") >> identity.boot;
    std::error_code error;
    identity.nameSpace = std::filesystem::read_symlink("/proc/self/ns/pid", error).string();
    identity.process = std::to_string(::getpid());
    identity.start = startOf("self");
    return identity;
}

} // namespace

std::string ofThisProcess() {
    const Identity identity = identityOfThisProcess();
    return identity.isKnown()
               ? identity.boot + " " + identity.nameSpace + " " + identity.process + " " + identity.start
               : "";
}

bool isGone(const std::string& identity) {
    const Identity here = identityOfThisProcess();
    Identity other;
    std::istringstream(identity) >> other.boot >> other.nameSpace >> other.process >> other.start;
    if (!here.isKnown() || !other.isKnown()) {
        return false;
    }
    if (other.boot != here.boot) {
        return true;
    }
    return other.nameSpace == here.nameSpace && startOf(other.process) != other.start;
}

} // namespace Nerix::Platform::Host::ProcessIdentity
