#include "PlatformInterfaces/system_info.h"

#include "HostPlatform/HostConfiguration.h"
#include "HostPlatform/HostState.h"
#include "HostPlatform/WithoutExceptions.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <type_traits>

using Nerix::Platform::Host::HostConfiguration;
using Nerix::Platform::Host::HostState;
using Nerix::Platform::Host::withoutExceptions;

namespace {

const std::string section = "system_info";

/// Stores the result of find in *value; a string as a copy made with malloc. Returns 0 or an errno value.
template <class Find, class Value>
int lookUp(Find find, Value* value) {
    return withoutExceptions([&] {
        const auto found = find(HostState::instance().configuration());
        if (!found) {
            return EINVAL;
        }
        if constexpr (std::is_same_v<Value, char*>) {
            char* const copy = ::strdup(found->c_str());
            if (copy == nullptr) {
                return ENOMEM;
            }
            *value = copy;
        } else {
            *value = *found;
        }
        return 0;
    });
}

} // namespace

int system_info_get_value_string(int key, char** value) {
    return lookUp([&](const HostConfiguration& host) { return host.text(section, key); }, value);
}
int system_info_get_value_int(int key, int* value) {
    return lookUp([&](const HostConfiguration& host) { return host.integer(section, key); }, value);
}
int system_info_get_value_bool(int key, bool* value) {
    return lookUp([&](const HostConfiguration& host) { return host.boolean(section, key); }, value);
}
