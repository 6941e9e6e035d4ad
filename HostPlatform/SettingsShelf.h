#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Nerix::Platform::Host {

/// What was tried on which file, and why it failed.
class ShelfFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where settings are kept: bytes under keys of 1 to 511 bytes. One thread at a time may use a shelf. All
/// functions throw ShelfFailure.
class SettingsShelf {
public:
    using Visit = std::function<void(std::string_view key, std::string_view bytes)>;

    SettingsShelf() = default;
    virtual ~SettingsShelf() = default;
    SettingsShelf(const SettingsShelf&) = delete;
    SettingsShelf& operator=(const SettingsShelf&) = delete;

    /// What is stored under the key; nothing when it is missing.
    virtual std::optional<std::string> get(std::string_view key) = 0;

    virtual void put(std::string_view key, std::string_view bytes) = 0;

    /// Visits everything in key order. The views are valid during the visit.
    virtual void each(const Visit& visit) = 0;
};

} // namespace Nerix::Platform::Host
