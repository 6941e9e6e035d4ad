#include "PlatformInterfaces/vconf.h"

#include "HostPlatform/CBarrier.h"
#include "HostPlatform/SettingsStore.h"

#include <cerrno>
#include <cstring>

using Nerix::Platform::Host::SettingsResult;
using Nerix::Platform::Host::SettingsStore;
using Nerix::Platform::Host::SettingType;
using Nerix::Platform::Host::withoutExceptions;

namespace {

int codeOf(SettingsResult result) {
    switch (result) {
    case SettingsResult::Ok:
        return 0;
    case SettingsResult::Missing:
        return ENOENT;
    case SettingsResult::OtherType:
        return EINVAL;
    case SettingsResult::Failed:
        break;
    }
    return EIO;
}

template <class Value>
int readNumber(const char* key, SettingType type, Value* value) {
    if (key == nullptr || value == nullptr) {
        return EINVAL;
    }
    return withoutExceptions([&] {
        std::string bytes;
        const int code = codeOf(SettingsStore::instance().read(key, type, bytes));
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
        return codeOf(SettingsStore::instance().write(key, type,
                                                      {reinterpret_cast<const char*>(&value), sizeof value}));
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
            if (SettingsStore::instance().read(key, SettingType::Text, bytes) == SettingsResult::Ok) {
                text = ::strdup(bytes.c_str());
            }
            return 0;
        });
    }
    return text;
}

int vconf_set_str(const char* key, const char* value) {
    if (key == nullptr || value == nullptr) {
        return EINVAL;
    }
    return withoutExceptions(
        [&] { return codeOf(SettingsStore::instance().write(key, SettingType::Text, value)); });
}
