#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Nerix::Platform::Host {

/// Reports that the store failed; what() names the operation, the file and the reason.
class SettingsFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Stores settings: byte strings under keys. Only one thread at a time may use it. Throws SettingsFailure.
class SettingsBackend {
public:
    using Visit = std::function<void(std::string_view key, std::string_view bytes)>;

    SettingsBackend() = default;
    virtual ~SettingsBackend() = default;
    SettingsBackend(const SettingsBackend&) = delete;
    SettingsBackend& operator=(const SettingsBackend&) = delete;

    /// Returns the bytes stored under the key, or nullopt if there are none.
    virtual std::optional<std::string> get(std::string_view key) = 0;

    virtual void put(std::string_view key, std::string_view bytes) = 0;

    /// Calls visit for each setting, in key order, with views that are valid during the call. Skips settings
    /// that cannot be read, and throws the first such failure at the end.
    virtual void each(const Visit& visit) = 0;
};

} // namespace Nerix::Platform::Host
