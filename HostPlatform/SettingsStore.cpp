#include "HostPlatform/SettingsStore.h"

#include "Common/Base/NoDestructor.h"
#include "HostPlatform/DirectoryBackend.h"
#include "HostPlatform/HostDirectories.h"
#include "HostPlatform/MemoryBackend.h"
#include "HostPlatform/ProcessIdentity.h"
#include "HostPlatform/StateInMemory.h"
#include "HostPlatform/SystemLog.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Nerix::Platform::Host {

namespace {

constexpr std::string_view volatilePrefix = "memory/";

/// What is stored: the type's letter, the writer's identity, a zero byte, the value's bytes.
std::string packed(SettingType type, std::string_view bytes) {
    static Common::NoDestructor<const std::string> writer(ProcessIdentity::own());
    std::string record;
    record.reserve(1 + writer->size() + 1 + bytes.size());
    record.append(1, static_cast<char>(type)).append(*writer).append(1, '\0').append(bytes);
    return record;
}

/// Returns nullopt if the record is not in our format.
std::optional<Setting> unpacked(std::string_view key, std::string_view stored) {
    const std::size_t end = stored.find('\0');
    if (end == std::string_view::npos || end == 0) {
        return std::nullopt;
    }
    return Setting{std::string(key), static_cast<SettingType>(stored.front()),
                   std::string(stored.substr(end + 1)), std::string(stored.substr(1, end - 1))};
}

SettingsResult findIn(SettingsBackend& backend, std::string_view key, Setting& setting) {
    const std::optional<std::string> stored = backend.get(key);
    if (!stored) {
        return SettingsResult::Missing;
    }
    std::optional<Setting> found = unpacked(key, *stored);
    if (!found) {
        return SettingsResult::OtherType;
    }
    setting = std::move(*found);
    return SettingsResult::Ok;
}

} // namespace

SettingsStore::SettingsStore() {
    if (isStateInMemory()) {
        m_durable = std::make_unique<MemoryBackend>();
        m_volatile = std::make_unique<MemoryBackend>();
        return;
    }
    m_durable = std::make_unique<DirectoryBackend>("settings", &durableDirectory, true);
    m_volatile = std::make_unique<DirectoryBackend>("settings-volatile", &volatileDirectory, false);
}

SettingsStore::~SettingsStore() = default;

SettingsStore& SettingsStore::instance() {
    static Common::NoDestructor<SettingsStore> store;
    return *store;
}

std::string SettingsStore::lastFailure() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_lastFailure;
}

SettingsBackend& SettingsStore::backendOf(std::string_view key) {
    return key.substr(0, volatilePrefix.size()) == volatilePrefix ? *m_volatile : *m_durable;
}

template <class Step>
SettingsResult SettingsStore::attempt(Step step) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    try {
        return step();
    } catch (const SettingsFailure& failure) {
        m_lastFailure = failure.what();
        return SettingsResult::Failed;
    }
}

SettingsResult SettingsStore::read(std::string_view key, SettingType type, std::string& bytes) {
    return attempt([&] {
        Setting setting{};
        const SettingsResult result = findIn(backendOf(key), key, setting);
        if (result != SettingsResult::Ok) {
            return result;
        }
        if (setting.type != type) {
            return SettingsResult::OtherType;
        }
        bytes = std::move(setting.bytes);
        return SettingsResult::Ok;
    });
}

SettingsResult SettingsStore::find(std::string_view key, Setting& setting) {
    return attempt([&] { return findIn(backendOf(key), key, setting); });
}

SettingsResult SettingsStore::write(std::string_view key, SettingType type, std::string_view bytes) {
    SystemLog::instance().flush();
    return attempt([&] {
        backendOf(key).put(key, packed(type, bytes));
        return SettingsResult::Ok;
    });
}

SettingsResult SettingsStore::list(std::vector<Setting>& settings) {
    return attempt([&] {
        std::vector<Setting> all;
        for (SettingsBackend* const backend : {m_durable.get(), m_volatile.get()}) {
            backend->each([&](std::string_view key, std::string_view stored) {
                if (std::optional<Setting> setting = unpacked(key, stored)) {
                    all.push_back(std::move(*setting));
                }
            });
        }
        std::sort(all.begin(), all.end(), [](const Setting& a, const Setting& b) { return a.key < b.key; });
        settings = std::move(all);
        return SettingsResult::Ok;
    });
}

} // namespace Nerix::Platform::Host
