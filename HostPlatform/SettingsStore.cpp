#include "HostPlatform/SettingsStore.h"

#include "HostPlatform/HostDirectories.h"
#include "HostPlatform/ProcessIdentity.h"
#include "PlatformInterfaces/dlog.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Nerix::Platform::Host {

namespace {

constexpr std::string_view volatilePrefix = "memory/";

/// "le64" for a little-endian machine of 64 bits: LMDB's files are in the machine's own layout.
std::string layout() {
    const char* const order = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? "le" : "be";
    return order + std::to_string(sizeof(void*) * CHAR_BIT);
}

/// Gives LMDB's lock file its blocks. LMDB maps it before it has any, and on a full disk the first use of the map would end
/// the process by SIGBUS. 0, or an errno.
int reserveLockFile(const std::string& store) {
    constexpr off_t size = 8192; // what LMDB makes it for the 126 readers that it has room for
    const int file = ::open((store + "-lock").c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (file == -1) {
        return errno;
    }
    struct stat status {};
    int code = ::fstat(file, &status) == 0 ? 0 : errno;
    if (code == 0 &&
        status.st_size < size) { // a file of this size was made so, or is somebody's copy with holes
        code = ::posix_fallocate(file, 0, size);
    }
    ::close(file);
    return code;
}

/// Whether the file holds all pages that the store counts: reading one that was cut off would end the process by SIGBUS.
bool isWhole(MDB_env* environment) {
    MDB_envinfo info{};
    MDB_stat pages{};
    mdb_filehandle_t file = -1;
    struct stat status {};
    if (mdb_env_info(environment, &info) != 0 || mdb_env_stat(environment, &pages) != 0 ||
        mdb_env_get_fd(environment, &file) != 0 || ::fstat(file, &status) != 0) {
        return false;
    }
    return static_cast<std::uint64_t>(status.st_size) >=
           (std::uint64_t{info.me_last_pgno} + 1) * pages.ms_psize;
}

bool isDamage(int code) {
    return code == MDB_CORRUPTED || code == MDB_INVALID || code == MDB_PAGE_NOTFOUND;
}

/// Ends with the scope unless committed.
class Transaction {
public:
    Transaction(MDB_env* environment, unsigned int flags) {
        m_code = mdb_txn_begin(environment, nullptr, flags, &m_transaction);
    }
    ~Transaction() {
        if (m_transaction != nullptr) {
            mdb_txn_abort(m_transaction);
        }
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    int code() const { return m_code; }
    MDB_txn* get() const { return m_transaction; }

    int commit() {
        MDB_txn* const ended = m_transaction;
        m_transaction = nullptr; // gone also when the commit fails
        return mdb_txn_commit(ended);
    }

private:
    MDB_txn* m_transaction = nullptr;
    int m_code = 0;
};

/// What is stored: the type, the writer's identity up to a zero byte, and the value's bytes.
std::string packed(SettingType type, std::string_view bytes) {
    static const std::string writer = ProcessIdentity::own();
    std::string record;
    record.reserve(1 + writer.size() + 1 + bytes.size());
    record.append(1, static_cast<char>(type)).append(writer).append(1, '\0').append(bytes);
    return record;
}

struct CursorCloser {
    void operator()(MDB_cursor* cursor) const { mdb_cursor_close(cursor); }
};

MDB_val toValue(std::string_view text) {
    return {text.size(), const_cast<char*>(text.data())}; // LMDB reads from it only
}

std::string_view toView(const MDB_val& value) {
    return {static_cast<const char*>(value.mv_data), value.mv_size};
}

/// Fills in what is stored; false when it is none of ours.
bool unpack(const MDB_val& value, Setting& setting) {
    const std::string_view stored = toView(value);
    const std::size_t end = stored.find('\0');
    if (end == std::string_view::npos || end == 0) {
        return false;
    }
    setting.type = static_cast<SettingType>(stored.front());
    setting.writer = stored.substr(1, end - 1);
    setting.bytes = stored.substr(end + 1);
    return true;
}

} // namespace

SettingsStore::SettingsStore()
    : m_durable{"settings-" + layout() + ".mdb", false, "", nullptr},
      m_volatile{"settings-volatile-" + layout() + ".mdb", true, "", nullptr} {
    m_durable.place = m_durable.fileName;
    m_volatile.place = m_volatile.fileName;
}

SettingsStore& SettingsStore::instance() {
    // Never destroyed: other static objects may still publish while the process ends.
    static SettingsStore& store = *new SettingsStore();
    return store;
}

std::string SettingsStore::lastFailure() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_lastFailure;
}

SettingsStore::Shelf& SettingsStore::shelfOf(std::string_view key) {
    return key.substr(0, volatilePrefix.size()) == volatilePrefix ? m_volatile : m_durable;
}

int SettingsStore::open(Shelf& shelf) {
    if (shelf.environment) {
        return 0;
    }
    const std::filesystem::path file =
        (shelf.isVolatile ? volatileDirectory() : durableDirectory()) / shelf.fileName;
    shelf.place = file.string();
    MDB_env* created = nullptr;
    if (const int code = mdb_env_create(&created)) {
        return code;
    }
    Environment environment(created);
    const unsigned int flags =
        MDB_NOSUBDIR | MDB_NOTLS | (shelf.isVolatile ? MDB_NOSYNC | MDB_NOMETASYNC : 0U);
    if (const int code = reserveLockFile(shelf.place)) {
        return code;
    }
    if (const int code = mdb_env_open(environment.get(), file.c_str(), flags, 0600)) {
        return code;
    }
    if (!isWhole(environment.get())) {
        return MDB_CORRUPTED;
    }
    // Processes that were killed while reading would otherwise hold on to old pages for ever.
    int deadReaders = 0;
    mdb_reader_check(environment.get(), &deadReaders);

    // For reading, which waits for nobody; the table is there from the beginning.
    Transaction transaction(environment.get(), MDB_RDONLY);
    if (transaction.code() != 0) {
        return transaction.code();
    }
    if (const int code = mdb_dbi_open(transaction.get(), nullptr, 0, &shelf.table)) {
        return code;
    }
    if (const int code = transaction.commit()) {
        return code;
    }
    shelf.environment = std::move(environment);
    return 0;
}

template <class Step>
int SettingsStore::attempt(Shelf& shelf, const char* what, std::string_view key, Step step) {
    int code = 0;
    std::string reason;
    try {
        code = open(shelf);
        if (code == 0) {
            code = step(shelf);
        }
    } catch (const std::system_error& error) {
        code = error.code().value();
        reason = error.what();
    }
    if (code == 0) {
        return 0;
    }
    const std::string which = key.empty() ? "" : " '" + std::string(key) + "'";
    m_lastFailure = "settings store " + shelf.place + ": cannot " + what + which + ": " +
                    (reason.empty() ? mdb_strerror(code) : reason);
    if (isDamage(code)) {
        m_lastFailure += "; if nothing else uses it, delete this file and the one that ends in -lock";
    }
    if (code != MDB_NOTFOUND && code != MDB_INCOMPATIBLE) {
        if (code != MDB_BAD_VALSIZE) {
            // After a failed write LMDB may refuse everything until the environment is opened anew.
            shelf.environment.reset();
        }
        __dlog_print(DLOG_BUFFER_SYSTEM, DLOG_PRIORITY_ERROR, "nerix.host", "%s", m_lastFailure.c_str());
    }
    return code;
}

int SettingsStore::fetch(const Shelf& shelf, std::string_view key, Setting& setting) {
    const Transaction transaction(shelf.environment.get(), MDB_RDONLY);
    if (transaction.code() != 0) {
        return transaction.code();
    }
    MDB_val name = toValue(key);
    MDB_val value{};
    if (key.empty() ||
        key.size() > static_cast<std::size_t>(mdb_env_get_maxkeysize(shelf.environment.get()))) {
        return MDB_BAD_VALSIZE;
    }
    if (const int code = mdb_get(transaction.get(), shelf.table, &name, &value)) {
        return code;
    }
    setting.key = key;
    return unpack(value, setting) ? 0 : MDB_INCOMPATIBLE;
}

int SettingsStore::find(std::string_view key, Setting& setting) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return attempt(shelfOf(key), "read", key, [&](Shelf& shelf) { return fetch(shelf, key, setting); });
}

int SettingsStore::read(std::string_view key, SettingType type, std::string& bytes) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return attempt(shelfOf(key), "read", key, [&](Shelf& shelf) {
        Setting setting{};
        if (const int code = fetch(shelf, key, setting)) {
            return code;
        }
        if (setting.type != type) {
            return MDB_INCOMPATIBLE;
        }
        bytes = std::move(setting.bytes);
        return 0;
    });
}

int SettingsStore::write(std::string_view key, SettingType type, std::string_view bytes) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return attempt(shelfOf(key), "write", key, [&](Shelf& shelf) {
        Transaction transaction(shelf.environment.get(), 0);
        if (transaction.code() != 0) {
            return transaction.code();
        }
        const std::string stored = packed(type, bytes);
        MDB_val name = toValue(key);
        MDB_val value = toValue(stored);
        if (const int code = mdb_put(transaction.get(), shelf.table, &name, &value, 0)) {
            return code;
        }
        return transaction.commit();
    });
}

int SettingsStore::list(std::vector<Setting>& settings) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<Setting> found;
    for (Shelf* const shelf : {&m_durable, &m_volatile}) {
        const int result = attempt(*shelf, "list its settings", "", [&](Shelf& opened) {
            const Transaction transaction(opened.environment.get(), MDB_RDONLY);
            if (transaction.code() != 0) {
                return transaction.code();
            }
            MDB_cursor* created = nullptr;
            if (const int code = mdb_cursor_open(transaction.get(), opened.table, &created)) {
                return code;
            }
            const std::unique_ptr<MDB_cursor, CursorCloser> cursor(created);
            MDB_val name{};
            MDB_val value{};
            int code = mdb_cursor_get(cursor.get(), &name, &value, MDB_FIRST);
            for (; code == 0; code = mdb_cursor_get(cursor.get(), &name, &value, MDB_NEXT)) {
                if (Setting setting{std::string(toView(name)), {}, {}, {}}; unpack(value, setting)) {
                    found.push_back(std::move(setting));
                }
            }
            return code == MDB_NOTFOUND ? 0 : code;
        });
        if (result != 0) {
            return result;
        }
    }
    std::sort(found.begin(), found.end(), [](const Setting& a, const Setting& b) { return a.key < b.key; });
    settings = std::move(found);
    return 0;
}

} // namespace Nerix::Platform::Host
