#pragma once

#include "HostPlatform/SettingsBackend.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Nerix::Platform::Host {

/// The type of a setting's value; the letter stands at the beginning of what is stored.
enum class SettingType : char { Integer = 'i', Double = 'd', Text = 's', Boolean = 'b' };

struct Setting {
    std::string key;
    SettingType type;
    std::string bytes;  ///< the int or double as in memory, or the characters of the text
    std::string writer; ///< the process that wrote it, see ProcessIdentity.h
};

struct SettingsListing {
    std::vector<Setting> settings;          ///< all that could be read, in the byte order of their keys
    std::optional<SettingsFailure> failure; ///< the first one, if some could not
};

/// The host's settings store: typed values under text keys, shared by all processes of the user.
///
/// Keys under "memory/" are kept in files that are never synced to disk, all others in durable ones, see
/// DirectoryBackend.h. A process killed at any instant leaves all readable and writable, with either the old
/// or the new value of the key that it was writing. Each value carries the identity of the process that wrote
/// it. Processes with a different word size or byte order use separate files. No call waits for another
/// process, except briefly for the lock on the log directory. A failed call changes nothing. A key that is
/// empty, or too long for the name of a file, fails. A failure is thrown as SettingsFailure, and logged before. Any thread may call.
class SettingsStore {
public:
    /// forMemoryKeys: for the settings whose keys begin with "memory/"; durable: for all others.
    SettingsStore(std::unique_ptr<SettingsBackend> durable, std::unique_ptr<SettingsBackend> forMemoryKeys);
    ~SettingsStore();

    /// Returns the setting of this key, whatever its type, or nothing if there is none.
    std::optional<Setting> find(std::string_view key);

    /// Replaces the setting, of whatever type, after flushing the system log: whoever sees the setting also
    /// finds the records that were logged before it.
    void write(std::string_view key, SettingType type, std::string_view bytes);

    /// Returns all settings. Throws no SettingsFailure: one damaged setting must not hide the others.
    SettingsListing list();

private:
    SettingsBackend& backendOf(std::string_view key);

    std::mutex m_mutex; ///< guards the rest
    std::unique_ptr<SettingsBackend> m_durable;
    std::unique_ptr<SettingsBackend> m_volatile;
};

} // namespace Nerix::Platform::Host
