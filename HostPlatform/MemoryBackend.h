#pragma once

#include "HostPlatform/SettingsBackend.h"

#include <map>

namespace Nerix::Platform::Host {

/// Keeps settings in memory for the life of the process; see HostState.h.
class MemoryBackend final : public SettingsBackend {
public:
    std::optional<std::string> get(std::string_view key) override {
        const auto found = m_settings.find(key);
        return found == m_settings.end() ? std::nullopt : std::optional<std::string>(found->second);
    }
    void put(std::string_view key, std::string_view bytes) override {
        m_settings.insert_or_assign(std::string(key), std::string(bytes));
    }
    void each(const Visit& visit) override {
        for (const auto& [key, bytes] : m_settings) {
            visit(key, bytes);
        }
    }

private:
    std::map<std::string, std::string, std::less<>> m_settings;
};

} // namespace Nerix::Platform::Host
