#include "PlatformInterfaces/vconf.h"

#include "HostPlatform/HostState.h"
#include "HostPlatform/SettingsBackend.h"
#include "HostPlatform/SettingsStore.h"
#include "HostPlatform/WithoutExceptions.h"

#include <cerrno>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

using Nerix::Platform::Host::HostState;
using Nerix::Platform::Host::Setting;
using Nerix::Platform::Host::SettingsFailure;
using Nerix::Platform::Host::SettingType;
using Nerix::Platform::Host::withoutExceptions;

namespace {

/// Runs an operation on the store. Returns its result code, or EIO if the store failed and logged that.
template <class Operation>
int onStore(Operation operation) {
    return withoutExceptions([&] {
        try {
            return operation(HostState::instance().settings());
        } catch (const SettingsFailure&) {
            return EIO;
        }
    });
}

/// Reads a setting of the type and passes its bytes to take, which returns false if they are invalid.
template <class Take>
int read(const char* key, SettingType type, Take take) {
    return onStore([&](auto& store) {
        const std::optional<Setting> setting = store.find(key);
        if (!setting) {
            return ENOENT;
        }
        if (setting->type != type) {
            return EINVAL;
        }
        return take(setting->bytes) ? 0 : EINVAL;
    });
}

template <class Value>
int readNumber(const char* key, SettingType type, Value* value) {
    if (key == nullptr || value == nullptr) {
        return EINVAL;
    }
    return read(key, type, [&](const std::string& bytes) {
        if (bytes.size() != sizeof *value) {
            return false;
        }
        std::memcpy(value, bytes.data(), sizeof *value);
        return true;
    });
}

int write(const char* key, SettingType type, std::string_view bytes) {
    return onStore([&](auto& store) {
        store.write(key, type, bytes);
        return 0;
    });
}

template <class Value>
int writeNumber(const char* key, SettingType type, Value value) {
    return key == nullptr ? EINVAL : write(key, type, {reinterpret_cast<const char*>(&value), sizeof value});
}

} // namespace

int vconf_get_int(const char* key, int* value) {
    return readNumber(key, SettingType::Integer, value);
}
int vconf_set_int(const char* key, int value) {
    return writeNumber(key, SettingType::Integer, value);
}
int vconf_get_dbl(const char* key, double* value) {
    return readNumber(key, SettingType::Double, value);
}
int vconf_set_dbl(const char* key, double value) {
    return writeNumber(key, SettingType::Double, value);
}
int vconf_get_bool(const char* key, int* value) {
    return readNumber(key, SettingType::Boolean, value);
}
int vconf_set_bool(const char* key, int value) {
    return writeNumber(key, SettingType::Boolean, value);
}

char* vconf_get_str(const char* key) {
    char* text = nullptr;
    if (key != nullptr) {
        read(key, SettingType::Text, [&](const std::string& bytes) {
            text = ::strdup(bytes.c_str());
            return true;
        });
    }
    return text;
}

int vconf_set_str(const char* key, const char* value) {
    return key == nullptr || value == nullptr ? EINVAL : write(key, SettingType::Text, value);
}
