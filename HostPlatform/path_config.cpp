#include "PlatformInterfaces/path_config.h"

#include "Common/Base/NoDestructor.h"
#include "HostPlatform/HostConfiguration.h"
#include "HostPlatform/HostState.h"
#include "HostPlatform/WithoutExceptions.h"

#include <map>
#include <mutex>
#include <string>

using Nerix::Common::NoDestructor;
using Nerix::Platform::Host::HostState;
using Nerix::Platform::Host::withoutExceptions;

const char* path_config_get(int variable) {
    // Never destroyed, because callers may keep the pointers.
    static NoDestructor<std::map<int, std::string>> directories;
    static std::mutex mutex;
    const char* directory = nullptr;
    withoutExceptions([&] {
        const std::lock_guard<std::mutex> lock(mutex);
        if (const auto text = HostState::instance().configuration().text("path", variable)) {
            directory = directories->emplace(variable, *text).first->second.c_str();
        }
        return 0;
    });
    return directory;
}
