#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Nerix::Platform::Host {

/// what() names the operation, the file and the reason.
class SettingsFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Storage for settings: byte strings under keys. One thread at a time may use a backend. All functions throw
/// SettingsFailure.
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

    /// Visits everything in key order. The views are valid during the visit. One that cannot be read does not
    /// keep the others from being visited; the first such failure is thrown at the end.
    virtual void each(const Visit& visit) = 0;
};

} // namespace Nerix::Platform::Host
