#pragma once

#include "HostPlatform/SettingsBackend.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Nerix::Platform::Host {

/// Settings in the files of a directory, one file each, named for its key.
///
/// A file is replaced as a whole, by rename: no process waits for another, a process that is killed leaves
/// the old or the new value, and damage to one file does not affect the others. Files are not mapped into
/// memory, so truncating a file during a read causes an error, not a signal. The directory is opened at each
/// call and may be deleted and made anew meanwhile.
///
/// A file holds a checksum of the rest (CRC-32, eight hexadecimal digits) and what was put. It may be up to 1
/// MiB long. The file name of a key has up to 255 bytes: letters, digits, '.', '_' and '-' stand for
/// themselves, '+' for '/', and %HH for any other byte and for a leading '.'. A failure is logged before it
/// is thrown.
class DirectoryBackend final : public SettingsBackend {
public:
    /// Uses the directory `name`, with byte order and word size appended, inside the directory that `parent`
    /// returns; numbers are stored as they are in memory. Settings that are not synced survive their process,
    /// but not a power failure.
    DirectoryBackend(const std::string& name, std::filesystem::path (*parent)(), bool isSynced);

    std::optional<std::string> get(std::string_view key) override;
    void put(std::string_view key, std::string_view bytes) override;
    void each(const Visit& visit) override;

private:
    /// The directory, which is made where it is missing. The parent is examined again only when something has
    /// replaced it.
    std::filesystem::path directory();

    /// The keys of all files, in order.
    std::vector<std::string> keys();

    /// Runs one step; a std::system_error becomes a SettingsFailure: "settings store FILE: cannot WHAT:
    /// reason".
    template <class Step>
    auto attempt(const std::string& what, Step step);

    const std::string m_name;
    std::filesystem::path (*const m_parent)();
    const bool m_isSynced;
    std::string m_place;              ///< what messages call the store: the path that was used last
    std::filesystem::path m_examined; ///< the directory that was found safe; empty for none
    dev_t m_device = 0;               ///< its device and inode
    ino_t m_inode = 0;
};

} // namespace Nerix::Platform::Host
