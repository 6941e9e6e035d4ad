#include "HostPlatform/SettingsStore.h"

#include "Common/Base/NoDestructor.h"
#include "HostPlatform/HostState.h"
#include "HostPlatform/ProcessIdentity.h"
#include "HostPlatform/SystemLog.h"

#include <algorithm>
#include <utility>

namespace Nerix::Platform::Host {

namespace {

constexpr std::string_view volatilePrefix = "memory/";

/// Returns the record to store: type letter, identity of the writer, zero byte, bytes of the value.
std::string packed(SettingType type, std::string_view bytes) {
    static Common::NoDestructor<const std::string> writer(ProcessIdentity::ofThisProcess());
    std::string record;
    record.reserve(1 + writer->size() + 1 + bytes.size());
    record.append(1, static_cast<char>(type)).append(*writer).append(1, '\0').append(bytes);
    return record;
}

/// Splits a record. Returns nullopt if it begins with a zero byte or contains none.
std::optional<Setting> unpacked(std::string_view key, std::string_view stored) {
    const std::size_t end = stored.find('\0');
    if (end == std::string_view::npos || end == 0) {
        return std::nullopt;
    }
    return Setting{std::string(key), static_cast<SettingType>(stored.front()),
                   std::string(stored.substr(end + 1)), std::string(stored.substr(1, end - 1))};
}

} // namespace

SettingsStore::SettingsStore(std::unique_ptr<SettingsBackend> durable,
                             std::unique_ptr<SettingsBackend> forMemoryKeys)
    : m_durable(std::move(durable)), m_volatile(std::move(forMemoryKeys)) {}

SettingsStore::~SettingsStore() = default;

SettingsBackend& SettingsStore::backendOf(std::string_view key) {
    return key.substr(0, volatilePrefix.size()) == volatilePrefix ? *m_volatile : *m_durable;
}

std::optional<Setting> SettingsStore::find(std::string_view key) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::optional<std::string> stored = backendOf(key).get(key);
    return stored ? unpacked(key, *stored) : std::nullopt;
}

void SettingsStore::write(std::string_view key, SettingType type, std::string_view bytes) {
    HostState::instance().log().flush();
    const std::lock_guard<std::mutex> lock(m_mutex);
    backendOf(key).put(key, packed(type, bytes));
}

SettingsListing SettingsStore::list() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    SettingsListing listing;
    std::vector<Setting>& all = listing.settings;
    for (SettingsBackend* const backend : {m_durable.get(), m_volatile.get()}) {
        try {
            backend->each([&](std::string_view key, std::string_view stored) {
                if (std::optional<Setting> setting = unpacked(key, stored)) {
                    all.push_back(std::move(*setting));
                }
            });
        } catch (const SettingsFailure& failure) {
            if (!listing.failure) {
                listing.failure = failure;
            }
        }
    }
    std::sort(all.begin(), all.end(), [](const Setting& a, const Setting& b) { return a.key < b.key; });
    return listing;
}

} // namespace Nerix::Platform::Host
