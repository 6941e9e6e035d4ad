#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace Nerix::Common {
template <class T>
class NoDestructor;
}

namespace Nerix::Platform::Host {

class SettingsBackend;

/// The type of a setting's value; the letter stands at the beginning of what is stored.
enum class SettingType : char { Integer = 'i', Double = 'd', Text = 's', Boolean = 'b' };

struct Setting {
    std::string key;
    SettingType type;
    std::string bytes;  ///< the int or double as in memory, or the characters of the text
    std::string writer; ///< the process that wrote it, see ProcessIdentity.h
};

enum class SettingsResult {
    Ok,
    Missing,   ///< the store has no such key
    OtherType, ///< the key holds a value of another type
    Failed     ///< lastFailure() tells why, and so does the system log
};

/// The host's settings store: typed values under text keys, shared by all processes of the user.
///
/// Keys under "memory/" are kept in files that are never synced to disk, all others in durable ones, see
/// DirectoryBackend.h. A process killed at any instant leaves all readable and writable, with either the old
/// or the new value of the key that it was writing. Each value carries the identity of the process that wrote
/// it. Processes of another word size or byte order have files of their own. No call waits for another
/// process. A failed call changes nothing. A key that is empty, or too long for the name of a file, fails.
/// Only std::bad_alloc is thrown. Any thread may call.
class SettingsStore {
public:
    static SettingsStore& instance(); ///< never destroyed

    SettingsResult read(std::string_view key, SettingType type, std::string& bytes);
    SettingsResult write(std::string_view key, SettingType type,
                         std::string_view bytes); ///< replaces a value of any type

    /// The setting of this key, whatever its type.
    SettingsResult find(std::string_view key, Setting& setting);

    /// All settings, in the byte order of their keys.
    SettingsResult list(std::vector<Setting>& settings);

    /// The last failure, of any thread: what was tried on which file, and why it failed.
    std::string lastFailure() const;

private:
    friend class Common::NoDestructor<SettingsStore>;

    SettingsStore();
    ~SettingsStore();

    SettingsBackend& backendOf(std::string_view key);

    /// Runs one step under the lock; a failure of a backend is remembered.
    template <class Step>
    SettingsResult attempt(Step step);

    mutable std::mutex m_mutex; ///< guards the rest
    std::unique_ptr<SettingsBackend> m_durable;
    std::unique_ptr<SettingsBackend> m_volatile;
    std::string m_lastFailure;
};

} // namespace Nerix::Platform::Host
