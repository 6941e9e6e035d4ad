#pragma once

#include "HostPlatform/SettingsBackend.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Nerix::Platform::Host {

/// The type of a setting's value. A stored record begins with the letter.
enum class SettingType : char { Integer = 'i', Double = 'd', Text = 's', Boolean = 'b' };

struct Setting {
    std::string key;
    SettingType type;
    std::string bytes;  ///< the int or double as in memory, or the characters of the text
    std::string writer; ///< the process that wrote the setting; see ProcessIdentity.h
};

struct SettingsListing {
    std::vector<Setting> settings;          ///< all readable ones, in byte order of their keys
    std::optional<SettingsFailure> failure; ///< the first one, if any could not be read
};

/// Stores the host's settings: typed values under text keys, shared by all processes of the user.
///
/// Settings under "memory/" are in files that are never synced to disk, all others in durable files; see
/// DirectoryBackend.h. If a process is killed, all settings stay readable and writable, and the one that it
/// was writing has the old or the new value. Each value carries the identity of the process that wrote it.
/// Processes with a different word size or byte order use separate files. Calls do not wait for other
/// processes, except briefly for the lock on the log directory. A failed call changes nothing. A key must not
/// be empty or too long for a file name. Failures are logged, then thrown as SettingsFailure. Thread-safe.
class SettingsStore {
public:
    /// Uses forMemoryKeys for settings whose keys begin with "memory/", and durable for all others.
    SettingsStore(std::unique_ptr<SettingsBackend> durable, std::unique_ptr<SettingsBackend> forMemoryKeys);
    ~SettingsStore();

    /// Returns the setting of the key, of any type, or nullopt if there is none.
    std::optional<Setting> find(std::string_view key);

    /// Replaces the setting, of any type. Flushes the system log first, so that a reader of the setting also
    /// finds the records logged before it.
    void write(std::string_view key, SettingType type, std::string_view bytes);

    /// Returns all settings. Does not throw SettingsFailure, because a damaged setting must not hide the
    /// others.
    SettingsListing list();

private:
    SettingsBackend& backendOf(std::string_view key);

    std::mutex m_mutex; ///< guards the backends
    std::unique_ptr<SettingsBackend> m_durable;
    std::unique_ptr<SettingsBackend> m_volatile;
};

} // namespace Nerix::Platform::Host
