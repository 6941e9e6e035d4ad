#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <lmdb.h>

namespace Nerix::Platform::Host {

/// What was tried on which file, and why it failed.
class ShelfFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// One LMDB environment in a file of its own: bytes under keys of 1 to 511 bytes. Opened on first use, and
/// again after a failure. One thread at a time may use it.
///
/// All functions log a failure and throw it as ShelfFailure.
class SettingsShelf {
public:
    /// name: the file's, without its suffix; word size and byte order are added, as LMDB's files depend on
    /// them. An unsynced shelf survives its process, but not a power failure.
    SettingsShelf(const std::string& name, std::filesystem::path (*directory)(), bool isSynced);

    /// What is stored under the key; nothing when it is missing. Waits for no writer.
    std::optional<std::string> get(std::string_view key);

    void put(std::string_view key, std::string_view bytes);

    /// Visits everything in key order. The views are valid during the visit.
    void each(const std::function<void(std::string_view key, std::string_view bytes)>& visit);

private:
    struct EnvironmentCloser {
        void operator()(MDB_env* environment) const { mdb_env_close(environment); }
    };

    void open();
    [[noreturn]] void fail(const std::string& what, int code, const std::string& reason);

    /// Runs one step on the open environment; a failure closes it.
    template <class Step>
    auto attempt(const std::string& what, Step step);

    const std::string m_fileName;
    std::filesystem::path (*const m_directory)();
    const bool m_isSynced;
    std::string m_place; ///< what messages call it: the whole path once it is known
    std::unique_ptr<MDB_env, EnvironmentCloser> m_environment;
    MDB_dbi m_table = 0;
};

} // namespace Nerix::Platform::Host
