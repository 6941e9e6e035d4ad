#include "HostPlatform/LmdbShelf.h"

#include "PlatformInterfaces/dlog.h"

#include <cerrno>
#include <climits>
#include <cstdint>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Nerix::Platform::Host {

namespace {

/// LMDB's code, or an errno.
struct LmdbFailure {
    int code;
};

void require(int code) {
    if (code != 0) {
        throw LmdbFailure{code};
    }
}

/// "le64" for a little-endian machine of 64 bits: LMDB's files are in the machine's own layout.
std::string layout() {
    const char* const order = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? "le" : "be";
    return order + std::to_string(sizeof(void*) * CHAR_BIT);
}

/// Allocates the blocks of LMDB's lock file, which LMDB maps sparse: on a full disk the first access would
/// raise SIGBUS. Returns 0 or an errno.
int reserveLockFile(const std::string& store) {
    constexpr off_t size = 8192; // LMDB's own size, for 126 readers
    const int file = ::open((store + "-lock").c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (file == -1) {
        return errno;
    }
    struct stat status {};
    int code = ::fstat(file, &status) == 0 ? 0 : errno;
    // A file of this size has its blocks, unless somebody made a sparse copy.
    if (code == 0 && status.st_size < size) {
        code = ::posix_fallocate(file, 0, size);
    }
    ::close(file);
    return code;
}

/// Whether the file holds all pages that the store counts: reading beyond its end would raise SIGBUS.
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

struct TransactionAborter {
    void operator()(MDB_txn* transaction) const { mdb_txn_abort(transaction); }
};
/// Aborted with the scope unless committed.
using Transaction = std::unique_ptr<MDB_txn, TransactionAborter>;

Transaction begin(MDB_env* environment, unsigned int flags) {
    MDB_txn* transaction = nullptr;
    require(mdb_txn_begin(environment, nullptr, flags, &transaction));
    return Transaction(transaction);
}

void commit(Transaction transaction) {
    require(mdb_txn_commit(transaction.release())); // freed even when this fails
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

std::string quoted(std::string_view key) {
    return " '" + std::string(key) + "'";
}

} // namespace

LmdbShelf::LmdbShelf(const std::string& name, std::filesystem::path (*directory)(), bool isSynced)
    : m_fileName(name + "-" + layout() + ".mdb"),
      m_directory(directory),
      m_isSynced(isSynced),
      m_place(m_fileName) {}

void LmdbShelf::open() {
    if (m_environment) {
        return;
    }
    m_place = (m_directory() / m_fileName).string();
    MDB_env* created = nullptr;
    require(mdb_env_create(&created));
    std::unique_ptr<MDB_env, EnvironmentCloser> environment(created);
    require(reserveLockFile(m_place));
    const unsigned int flags = MDB_NOSUBDIR | MDB_NOTLS | (m_isSynced ? 0U : MDB_NOSYNC | MDB_NOMETASYNC);
    require(mdb_env_open(environment.get(), m_place.c_str(), flags, 0600));
    if (!isWhole(environment.get())) {
        throw LmdbFailure{MDB_CORRUPTED};
    }
    // Readers that were killed would otherwise pin old pages for ever.
    int deadReaders = 0;
    mdb_reader_check(environment.get(), &deadReaders);
    // Read-only, which waits for no writer; the main table always exists.
    Transaction transaction = begin(environment.get(), MDB_RDONLY);
    require(mdb_dbi_open(transaction.get(), nullptr, 0, &m_table));
    commit(std::move(transaction));
    m_environment = std::move(environment);
}

template <class Step>
auto LmdbShelf::attempt(const std::string& what, Step step) {
    try {
        open();
        return step();
    } catch (const LmdbFailure& failure) {
        fail(what, failure.code, mdb_strerror(failure.code));
    } catch (const std::system_error& failure) {
        fail(what, failure.code().value(), failure.what());
    }
}

void LmdbShelf::fail(const std::string& what, int code, const std::string& reason) {
    if (code != MDB_BAD_VALSIZE) {
        // After a failed write LMDB may refuse everything until the environment is reopened.
        m_environment.reset();
    }
    std::string text = "settings store " + m_place + ": cannot " + what + ": " + reason;
    if (isDamage(code)) {
        text += "; if nothing else uses it, delete this file and the one that ends in -lock";
    }
    __dlog_print(DLOG_BUFFER_SYSTEM, DLOG_PRIORITY_ERROR, "nerix.host", "%s", text.c_str());
    throw ShelfFailure(text);
}

std::optional<std::string> LmdbShelf::get(std::string_view key) {
    return attempt("read" + quoted(key), [&]() -> std::optional<std::string> {
        if (key.empty() ||
            key.size() > static_cast<std::size_t>(mdb_env_get_maxkeysize(m_environment.get()))) {
            throw LmdbFailure{MDB_BAD_VALSIZE};
        }
        const Transaction transaction = begin(m_environment.get(), MDB_RDONLY);
        MDB_val name = toValue(key);
        MDB_val value{};
        const int code = mdb_get(transaction.get(), m_table, &name, &value);
        if (code == MDB_NOTFOUND) {
            return std::nullopt;
        }
        require(code);
        return std::string(toView(value));
    });
}

void LmdbShelf::put(std::string_view key, std::string_view bytes) {
    attempt("write" + quoted(key), [&] {
        Transaction transaction = begin(m_environment.get(), 0);
        MDB_val name = toValue(key);
        MDB_val value = toValue(bytes);
        require(mdb_put(transaction.get(), m_table, &name, &value, 0));
        commit(std::move(transaction));
    });
}

void LmdbShelf::each(const Visit& visit) {
    attempt("list its settings", [&] {
        const Transaction transaction = begin(m_environment.get(), MDB_RDONLY);
        MDB_cursor* created = nullptr;
        require(mdb_cursor_open(transaction.get(), m_table, &created));
        const std::unique_ptr<MDB_cursor, CursorCloser> cursor(created);
        MDB_val name{};
        MDB_val value{};
        int code = mdb_cursor_get(cursor.get(), &name, &value, MDB_FIRST);
        for (; code == 0; code = mdb_cursor_get(cursor.get(), &name, &value, MDB_NEXT)) {
            visit(toView(name), toView(value));
        }
        require(code == MDB_NOTFOUND ? 0 : code);
    });
}

} // namespace Nerix::Platform::Host
