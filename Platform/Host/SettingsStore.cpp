#include "Platform/Host/SettingsStore.h"

#include "Platform/Host/HostDirectories.h"
#include "Platform/Interfaces/dlog.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace Nerix::Platform::Host {

namespace {

constexpr std::string_view volatilePrefix = "memory/";

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

struct CursorCloser {
    void operator()(MDB_cursor* cursor) const { mdb_cursor_close(cursor); }
};

MDB_val toValue(std::string_view text) {
    return {text.size(), const_cast<char*>(text.data())}; // LMDB reads from it only
}

std::string_view toView(const MDB_val& value) {
    return {static_cast<const char*>(value.mv_data), value.mv_size};
}

} // namespace

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
    if (const int code = mdb_env_open(environment.get(), file.c_str(), flags, 0600)) {
        return code;
    }
    // Processes that were killed while reading would otherwise hold on to old pages for ever.
    int deadReaders = 0;
    mdb_reader_check(environment.get(), &deadReaders);

    Transaction transaction(environment.get(), 0);
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
    if (code != MDB_NOTFOUND && code != MDB_INCOMPATIBLE) {
        if (code != MDB_BAD_VALSIZE) {
            // After a failed write LMDB may refuse everything until the environment is opened anew.
            shelf.environment.reset();
        }
        __dlog_print(DLOG_BUFFER_SYSTEM, DLOG_PRIORITY_ERROR, "nerix.host", "%s", m_lastFailure.c_str());
    }
    return code;
}

int SettingsStore::read(std::string_view key, SettingType type, std::string& bytes) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return attempt(shelfOf(key), "read", key, [&](Shelf& shelf) {
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
        const std::string_view stored = toView(value);
        if (stored.empty() || stored.front() != static_cast<char>(type)) {
            return MDB_INCOMPATIBLE;
        }
        bytes = stored.substr(1);
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
        const std::string stored = static_cast<char>(type) + std::string(bytes);
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
                const std::string_view stored = toView(value);
                if (stored.empty()) {
                    continue; // nothing of ours
                }
                found.push_back({std::string(toView(name)), static_cast<SettingType>(stored.front()),
                                 std::string(stored.substr(1))});
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
