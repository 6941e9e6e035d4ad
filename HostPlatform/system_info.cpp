#include "PlatformInterfaces/system_info.h"

#include "HostPlatform/HostConfiguration.h"

#include <cerrno>
#include <cstring>
#include <string>

using Nerix::Platform::Host::HostConfiguration;

namespace {

const std::string section = "system_info";

/// C callers cannot take exceptions; out of memory is the only one that gets here.
template <class Question>
int ask(Question question) noexcept {
    try {
        return question(HostConfiguration::instance());
    } catch (...) {
        return ENOMEM;
    }
}

} // namespace

int system_info_get_value_string(int key, char** value) {
    return ask([&](const HostConfiguration& host) {
        std::string text;
        const int code = host.text(section, key, text);
        if (code != 0) {
            return code;
        }
        char* const copy = ::strdup(text.c_str());
        if (copy == nullptr) {
            return ENOMEM;
        }
        *value = copy;
        return 0;
    });
}

int system_info_get_value_int(int key, int* value) {
    return ask([&](const HostConfiguration& host) { return host.integer(section, key, *value); });
}

int system_info_get_value_bool(int key, bool* value) {
    return ask([&](const HostConfiguration& host) { return host.boolean(section, key, *value); });
}
