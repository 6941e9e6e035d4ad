#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace Nerix::Platform::Host {

/// Provides built-in platform information for an ordinary machine, and reads the file that overrides it:
///
///     ; platform.ini in the durable directory
///     [system_info]
///     tv_software = T-MYMODELH-1234.5
///     is_tv = true
///     [path]
///     usb_drives = /run/media
///
/// A key is a name listed in docs/host.md, or the number that the device uses for it. An unusable value is an
/// error; it is never replaced by a default. If the file cannot be read, is malformed or is larger than 1
/// MiB, every lookup fails. Each failure is logged with file, section and key. Immutable, therefore
/// thread-safe.
class HostConfiguration {
public:
    /// Reads the file. Uses only built-in values if the path is empty or the file does not exist.
    explicit HostConfiguration(std::filesystem::path file);

    /// Returns the value of a key in section "system_info" or "path". Returns nullopt if the key is unknown,
    /// the value is empty or of the wrong type, or the file is unusable.
    std::optional<std::string> text(const std::string& section, int key) const;
    std::optional<int> integer(const std::string& section, int key) const;
    std::optional<bool> boolean(const std::string& section, int key) const;

private:
    struct Value {
        std::string text;
        bool isOverridden;
    };
    using Key = std::pair<std::string, int>; ///< section and key

    void read();
    void override(const std::string& section, const std::string& key, const std::string& text);
    std::optional<Value> find(const std::string& section, int key) const;
    void logBadValue(const std::string& section, int key, const Value& value, const char* wanted) const;

    std::filesystem::path m_file;
    std::string m_fault; ///< why the file is unusable; empty if it is usable
    std::map<Key, Value> m_values;
};

} // namespace Nerix::Platform::Host
