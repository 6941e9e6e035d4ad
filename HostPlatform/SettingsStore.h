#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <lmdb.h>

namespace Nerix::Platform::Host {

/// The type of a setting's value; the letter stands at the beginning of what is stored.
enum class SettingType : char { Integer = 'i', Double = 'd', Text = 's', Boolean = 'b' };

struct Setting {
    std::string key;
    SettingType type;
    std::string bytes;  ///< the int or double as in memory, or the characters of the text
    std::string writer; ///< the process that wrote it, see ProcessIdentity.h
};

/// The host's settings store: typed values under text keys, shared by all processes of the user.
///
/// Keys under "memory/" are kept in an environment that is never synced to disk, all others in a durable one.
/// A process killed at any instant leaves both readable and writable, with either the old or the new value of
/// the key that it was writing. Each value carries the identity of the process that wrote it. The files are in the
/// machine's own layout: processes of another word size or byte order have files of their own. Reading waits for no
/// writer. Codes: 0 for success, an errno, or one of LMDB's own (negative); lastFailure()
/// tells what happened. A failing call changes nothing and is logged, unless the key is missing or holds
/// another type. Keys have 1 to 511 bytes; others give MDB_BAD_VALSIZE. Throws only when out of memory. Any
/// thread may call.
class SettingsStore {
public:
    static SettingsStore& instance(); ///< lives until the process is gone

    /// MDB_NOTFOUND when the key is missing, MDB_INCOMPATIBLE when it holds another type.
    int read(std::string_view key, SettingType type, std::string& bytes);
    int write(std::string_view key, SettingType type, std::string_view bytes); ///< whatever type the key held

    /// The setting of this key, whatever its type. MDB_NOTFOUND as above.
    int find(std::string_view key, Setting& setting);

    /// All settings, in the byte order of their keys.
    int list(std::vector<Setting>& settings);

    /// What was tried on which file and why it failed, at the last call of any thread that gave a code other
    /// than 0.
    std::string lastFailure() const;

private:
    struct EnvironmentCloser {
        void operator()(MDB_env* environment) const { mdb_env_close(environment); }
    };
    using Environment = std::unique_ptr<MDB_env, EnvironmentCloser>;

    /// One of the two environments, opened on first use, and again after a failure.
    struct Shelf {
        std::string fileName;
        bool isVolatile;
        std::string place; ///< what messages call it: the whole path once it is known
        Environment environment;
        MDB_dbi table = 0;
    };

    SettingsStore();

    Shelf& shelfOf(std::string_view key);
    static int open(Shelf& shelf);
    static int fetch(const Shelf& shelf, std::string_view key, Setting& setting);

    /// Runs one step on an open shelf; a failure of the shelf itself is logged, and closes it.
    template <class Step>
    int attempt(Shelf& shelf, const char* what, std::string_view key, Step step);

    mutable std::mutex m_mutex; ///< guards the rest: no thread may use an environment that another closes
    Shelf m_durable;
    Shelf m_volatile;
    std::string m_lastFailure;
};

} // namespace Nerix::Platform::Host
