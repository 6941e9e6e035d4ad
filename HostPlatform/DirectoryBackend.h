#pragma once

#include "HostPlatform/SettingsBackend.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Nerix::Platform::Host {

/// Keeps settings in the files of a directory, one file per key.
///
/// A file is replaced as a whole by a new one. Processes do not wait for each other, a killed process leaves
/// the old or the new value, and damage to one file does not affect the others. Files are not mapped into
/// memory, so truncating a file during a read causes an error, not a signal. Each call finds the directory
/// again, which may have been deleted and recreated since the last call.
///
/// A file contains a checksum (CRC-32, eight hexadecimal digits) and the bytes of the setting. Its size is at
/// most 1 MiB. Its name is the key, in which letters, digits, '.', '_' and '-' are unchanged, '/' becomes
/// '+', and any other byte and a leading '.' become %HH. The name has at most 255 bytes. Failures are logged,
/// then thrown.
class DirectoryBackend final : public SettingsBackend {
public:
    /// Uses the directory NAME-LAYOUT inside the one that `parent` returns. LAYOUT is byte order and word
    /// size, because numbers are stored as in memory. Settings that are not synced may be lost in a power
    /// failure.
    DirectoryBackend(const std::string& name, std::filesystem::path (*parent)(), bool isSynced);

    std::optional<std::string> get(std::string_view key) override;
    void put(std::string_view key, std::string_view bytes) override;
    void each(const Visit& visit) override;

private:
    /// Returns the directory, and creates it if it is missing. Checks that it is safe on first use and
    /// whenever it has been replaced.
    std::filesystem::path directory();

    /// Does the same for reading. Returns nullopt if the directory is missing and cannot be created because
    /// the file system is read-only; there are then no settings.
    std::optional<std::filesystem::path> directoryToRead();

    /// Returns the keys of all files, in byte order.
    std::vector<std::string> keys();

    /// Runs step. Converts a std::system_error into the SettingsFailure "settings store FILE: cannot WHAT:
    /// REASON".
    template <class Step>
    auto attempt(const std::string& what, Step step);

    const std::string m_name;
    std::filesystem::path (*const m_parent)();
    const bool m_isSynced;
    std::string m_location;            ///< name of the store in messages: the last path used
    std::filesystem::path m_directory; ///< the directory last found safe; empty at first
    dev_t m_device = 0;                ///< its device and inode
    ino_t m_inode = 0;
};

} // namespace Nerix::Platform::Host
