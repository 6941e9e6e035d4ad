#include "PlatformInterfaces/vconf.h"

#include "HostPlatform/SettingsStore.h"

#include <cerrno>
#include <cstring>
#include <new>

using Nerix::Platform::Host::SettingsStore;
using Nerix::Platform::Host::SettingType;

namespace {

/// C callers cannot take exceptions; out of memory is the only one that gets here.
template <class Step>
int withoutExceptions(Step step) noexcept {
    try {
        return step();
    } catch (...) {
        return ENOMEM;
    }
}

template <class Value>
int readNumber(const char* key, SettingType type, Value* value) {
    if (key == nullptr || value == nullptr) {
        return EINVAL;
    }
    return withoutExceptions([&] {
        std::string bytes;
        const int code = SettingsStore::instance().read(key, type, bytes);
        if (code == 0 && bytes.size() == sizeof *value) {
            std::memcpy(value, bytes.data(), sizeof *value);
            return 0;
        }
        return code != 0 ? code : EINVAL;
    });
}

template <class Value>
int writeNumber(const char* key, SettingType type, Value value) {
    if (key == nullptr) {
        return EINVAL;
    }
    return withoutExceptions([&] {
        return SettingsStore::instance().write(key, type,
                                               {reinterpret_cast<const char*>(&value), sizeof value});
    });
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
        withoutExceptions([&] {
            std::string bytes;
            const int code = SettingsStore::instance().read(key, SettingType::Text, bytes);
            if (code == 0) {
                text = ::strdup(bytes.c_str());
            }
            return code;
        });
    }
    return text;
}

int vconf_set_str(const char* key, const char* value) {
    if (key == nullptr || value == nullptr) {
        return EINVAL;
    }
    return withoutExceptions([&] { return SettingsStore::instance().write(key, SettingType::Text, value); });
}
