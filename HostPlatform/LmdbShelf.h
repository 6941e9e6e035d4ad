#pragma once

#include "HostPlatform/SettingsShelf.h"

#include <filesystem>
#include <memory>
#include <string>

#include <lmdb.h>

namespace Nerix::Platform::Host {

/// One LMDB environment in a file of its own. Opened on first use, and again after a failure. A failure is
/// logged before it is thrown. Reading waits for no writer.
class LmdbShelf final : public SettingsShelf {
public:
    /// name: the file's, without its suffix; word size and byte order are added, as LMDB's files depend on
    /// them. An unsynced shelf survives its process, but not a power failure.
    LmdbShelf(const std::string& name, std::filesystem::path (*directory)(), bool isSynced);

    std::optional<std::string> get(std::string_view key) override;
    void put(std::string_view key, std::string_view bytes) override;
    void each(const Visit& visit) override;

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
