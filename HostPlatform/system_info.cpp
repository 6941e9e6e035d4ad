#include "PlatformInterfaces/system_info.h"

#include "HostPlatform/CBarrier.h"
#include "HostPlatform/HostConfiguration.h"
#include "HostPlatform/HostState.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <type_traits>

using Nerix::Platform::Host::HostConfiguration;
using Nerix::Platform::Host::HostState;
using Nerix::Platform::Host::withoutExceptions;

namespace {

const std::string section = "system_info";

template <class Question, class Value>
int lookUp(Question question, Value* value) {
    return withoutExceptions([&] {
        const auto answer = question(HostState::instance().configuration());
        if (!answer) {
            return EINVAL;
        }
        if constexpr (std::is_same_v<Value, char*>) {
            char* const copy = ::strdup(answer->c_str());
            if (copy == nullptr) {
                return ENOMEM;
            }
            *value = copy;
        } else {
            *value = *answer;
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
