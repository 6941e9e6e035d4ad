#include "Platform/Product/SystemInformation.h"

#include "PlatformInterfaces/system_info.h"

#include <cstdlib>
#include <memory>

namespace Nerix::Platform::SystemInformation {

boost::optional<std::string> readString(Key key) {
    char* answer = nullptr;
    if (system_info_get_value_string(key, &answer) != 0 || answer == nullptr) {
        return boost::none;
    }
    const std::unique_ptr<char, void (*)(void*)> owned(answer, &std::free);
    return std::string(owned.get());
}

boost::optional<int> readInt(Key key) {
    int answer = 0;
    const bool isKnown = system_info_get_value_int(key, &answer) == 0;
    return boost::make_optional(isKnown, answer);
}

boost::optional<bool> readBool(Key key) {
    bool answer = false;
    const bool isKnown = system_info_get_value_bool(key, &answer) == 0;
    return boost::make_optional(isKnown, answer);
}

} // namespace Nerix::Platform::SystemInformation
