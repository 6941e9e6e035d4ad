// Each setting is a file. Its name encodes the key (fileNameOf, keyOf); its content is a CRC-32 in
// hexadecimal, followed by the bytes of the setting (checkedContentOf). put writes a new file under a
// temporary name and gives it the name of the old one, so a reader sees either the old or the new value,
// without a lock. Every operation runs inside attempt, which converts a failure into a SettingsFailure that
// names the file.

#include "HostPlatform/DirectoryBackend.h"

#include "Common/Base/Descriptor.h"
#include "Common/Base/Files.h"
#include "Common/Base/Hexadecimal.h"
#include "Common/Base/NoDestructor.h"
#include "HostPlatform/PrivateDirectory.h"
#include "HostPlatform/ProcessIdentity.h"
#include "PlatformInterfaces/dlog.h"

#include <boost/crc.hpp>

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

namespace fs = std::filesystem;
using Common::Descriptor;

constexpr unsigned int checksumLength = 8;
constexpr std::size_t maxFileSize = std::size_t{1} << 20U;

[[noreturn]] void fail(int error) {
    throw std::system_error(error, std::generic_category());
}

/// Throws EBADMSG, which attempt reports as a damaged file.
[[noreturn]] void failAsDamaged() {
    fail(EBADMSG);
}

/// Returns byte order and word size, for example "le64".
std::string layout() {
    const char* const order = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? "le" : "be";
    return order + std::to_string(sizeof(void*) * CHAR_BIT);
}

bool isUnescaped(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '.' || byte == '_' || byte == '-';
}

std::string fileNameOf(std::string_view key) {
    std::string name;
    for (const char byte : key) {
        const bool isHidden = name.empty() && byte == '.';
        if (byte == '/') {
            name += '+';
        } else if (isUnescaped(byte) && !isHidden) {
            name += byte;
        } else {
            name += '%' + Common::hexadecimal(static_cast<unsigned char>(byte), 2);
        }
    }
    if (name.empty() || name.size() > NAME_MAX) {
        fail(name.empty() ? EINVAL : ENAMETOOLONG);
    }
    return name;
}

/// Returns the key for which fileNameOf returns this name, or nullopt if there is none.
std::optional<std::string> keyOf(const std::string& name) {
    std::string key;
    for (std::size_t index = 0; index != name.size(); ++index) {
        if (name[index] == '+') {
            key += '/';
        } else if (name[index] != '%') {
            key += name[index];
        } else if (const auto byte = Common::byteFromHexadecimal(std::string_view(name).substr(index + 1))) {
            key += *byte;
            index += 2;
        }
    }
    return !key.empty() && fileNameOf(key) == name ? std::optional<std::string>(key) : std::nullopt;
}

std::string checksumOf(std::string_view bytes) {
    boost::crc_32_type crc;
    crc.process_bytes(bytes.data(), bytes.size());
    return Common::hexadecimal(crc.checksum(), checksumLength);
}

/// Returns the whole file, or nullopt if it does not exist.
std::optional<std::string> contentOf(const fs::path& path) {
    // Does not follow links, and does not block on a FIFO without a writer.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen()) {
        if (errno == ENOENT) {
            return std::nullopt;
        }
        if (errno == ELOOP) {
            failAsDamaged();
        }
        fail(errno);
    }
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) {
        fail(errno);
    }
    if (!S_ISREG(status.st_mode) || static_cast<std::uintmax_t>(status.st_size) > maxFileSize) {
        failAsDamaged();
    }
    // One byte more, so that the last read can return 0.
    std::string content(static_cast<std::size_t>(status.st_size) + 1, '\0');
    std::size_t size = 0;
    while (size != content.size()) {
        const ssize_t count = ::read(file.number(), &content[size], content.size() - size);
        if (count == 0) {
            break;
        }
        if (count < 0 && errno != EINTR) {
            fail(errno);
        }
        size += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    content.resize(size);
    return content;
}

/// Returns the bytes that were put into the file, or nullopt if it does not exist.
std::optional<std::string> checkedContentOf(const fs::path& path) {
    std::optional<std::string> content = contentOf(path);
    if (!content) {
        return std::nullopt;
    }
    if (content->size() < checksumLength || content->size() > maxFileSize ||
        content->substr(0, checksumLength) != checksumOf(std::string_view(*content).substr(checksumLength))) {
        failAsDamaged();
    }
    content->erase(0, checksumLength);
    return content;
}

/// Writes a file. If isSynced, returns only after the content has reached the disk.
void writeFile(const fs::path& path, std::string_view content, bool isSynced) {
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.isOpen()) {
        fail(errno);
    }
    if (const int error = Common::writeAll(file.number(), content)) {
        fail(error);
    }
    if (isSynced && ::fsync(file.number()) != 0) {
        fail(errno);
    }
    if (::close(file.release()) != 0) {
        fail(errno);
    }
}

/// Renames temporary to path, and deletes the file that had that name.
void replaceFile(const fs::path& temporary, const fs::path& path, bool isSynced) {
    // When a file is renamed over another one, ext4 starts to write it to the disk, which takes as long as
    // the rest of put. It does not when the two files exchange their names.
    if (!isSynced && ::renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE) == 0) {
        if (::unlink(temporary.c_str()) == 0) {
            return;
        }
        const int error = errno; // EISDIR if a directory has the name of the setting
        ::renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE);
        fail(error);
    }
    // Reached if the write is synced, the setting is new, or the file system cannot exchange names.
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        fail(errno);
    }
}

void logError(const std::string& text) {
    __dlog_print(DLOG_BUFFER_SYSTEM, DLOG_PRIORITY_ERROR, "nerix.host", "%s", text.c_str());
}

/// Returns a file name that no other process uses, on this or any other machine, and that fileNameOf returns
/// for no key. A killed process may leave a file of that name.
std::string temporaryName() {
    static Common::NoDestructor<const std::string> identity(ProcessIdentity::ofThisProcess());
    return ".new " + *identity + " " + std::to_string(::getpid());
}

} // namespace

DirectoryBackend::DirectoryBackend(const std::string& name, fs::path (*parent)(), bool isSynced)
    : m_name(name + "-" + layout()), m_parent(parent), m_isSynced(isSynced), m_location(m_name) {}

fs::path DirectoryBackend::directory() {
    struct stat status {};
    const bool isUnchanged = !m_directory.empty() && ::lstat(m_directory.c_str(), &status) == 0 &&
                             status.st_dev == m_device && status.st_ino == m_inode;
    if (!isUnchanged) {
        m_directory = privateDirectory(m_parent() / m_name);
        if (::lstat(m_directory.c_str(), &status) != 0) {
            fail(errno);
        }
        m_device = status.st_dev;
        m_inode = status.st_ino;
    }
    return m_directory;
}

std::optional<fs::path> DirectoryBackend::directoryToRead() {
    try {
        return directory();
    } catch (const std::system_error& failure) {
        if (failure.code().value() != EROFS) {
            throw;
        }
        return std::nullopt;
    }
}

template <class Step>
auto DirectoryBackend::attempt(const std::string& what, Step step) {
    m_location = m_name;
    try {
        return step();
    } catch (const std::system_error& failure) {
        std::string text = "settings store " + m_location + ": cannot " + what + ": ";
        text += failure.code().value() == EBADMSG ? "it is damaged; delete this file" : failure.what();
        logError(text);
        throw SettingsFailure(text);
    }
}

std::optional<std::string> DirectoryBackend::get(std::string_view key) {
    return attempt("read '" + std::string(key) + "'", [&] {
        const std::optional<fs::path> directory = directoryToRead();
        if (!directory) {
            return std::optional<std::string>();
        }
        const fs::path file = *directory / fileNameOf(key);
        m_location = file.string();
        return checkedContentOf(file);
    });
}

void DirectoryBackend::put(std::string_view key, std::string_view bytes) {
    attempt("write '" + std::string(key) + "'", [&] {
        const fs::path file = directory() / fileNameOf(key);
        m_location = file.string();
        if (checksumLength + bytes.size() > maxFileSize) {
            fail(EFBIG);
        }
        const Descriptor directoryToSync(
            m_isSynced ? ::open(m_directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1);
        if (m_isSynced && !directoryToSync.isOpen()) {
            fail(errno);
        }
        const fs::path temporary = m_directory / temporaryName();
        try {
            writeFile(temporary, checksumOf(bytes).append(bytes), m_isSynced);
            replaceFile(temporary, file, m_isSynced);
        } catch (const std::system_error&) {
            ::unlink(temporary.c_str());
            throw;
        }
        // Does not fail, because readers already see the new value.
        if (m_isSynced && ::fsync(directoryToSync.number()) != 0) {
            logError("settings store " + m_location +
                     ": may not survive a power failure: " + Common::messageOf(errno));
        }
    });
}

void DirectoryBackend::each(const Visit& visit) {
    std::optional<SettingsFailure> failure;
    for (const std::string& key : keys()) {
        try {
            attempt("read '" + key + "'", [&] {
                const fs::path file = m_directory / fileNameOf(key);
                m_location = file.string();
                if (const std::optional<std::string> bytes = checkedContentOf(file)) {
                    visit(key, *bytes);
                }
            });
        } catch (const SettingsFailure& caught) {
            if (!failure) {
                failure = caught;
            }
        }
    }
    if (failure) {
        throw SettingsFailure(*failure);
    }
}

std::vector<std::string> DirectoryBackend::keys() {
    return attempt("list its settings", [&] {
        std::vector<std::string> keys;
        const std::optional<fs::path> listed = directoryToRead();
        if (!listed) {
            return keys;
        }
        m_location = listed->string();
        for (const fs::directory_entry& entry : fs::directory_iterator(*listed)) {
            if (std::optional<std::string> key = keyOf(entry.path().filename().string())) {
                keys.push_back(std::move(*key));
            }
        }
        std::sort(keys.begin(), keys.end());
        return keys;
    });
}

} // namespace Nerix::Platform::Host
