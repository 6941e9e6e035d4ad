// The records are written to a temporary file in the directory of the log, locked during the scan. commit
// renames it to the name of the log in one step, so a failed scan does not change an earlier log. A temporary
// file without a lock was abandoned by a killed scan; the next scan with the same log removes it.

#include "Executables/NerixHost/LogFile.h"

#include "Common/Base/Files.h"
#include "Executables/NerixHost/QuotedName.h"

#include <boost/crc.hpp>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Nerix {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& file, const std::string& reason) {
    throw std::runtime_error("cannot write " + quotedName(file) + ": " + reason);
}

/// Returns the prefix of the paths of a log's temporary files. It contains a checksum instead of the log's
/// name, which may already have the maximum length.
std::string temporaryPrefix(const fs::path& file) {
    const std::string name = file.filename().string();
    boost::crc_32_type crc;
    crc.process_bytes(name.data(), name.size());
    return (file.parent_path() / (".nerix-" + std::to_string(crc.checksum()) + "-")).string();
}

/// Removes temporary files that killed scans left behind, which are not locked.
void removeAbandoned(const std::string& prefix) {
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(prefix).parent_path(), error)) {
        const std::string path = entry.path().string();
        if (path.compare(0, prefix.size(), prefix) != 0) {
            continue;
        }
        const Common::Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
        if (file.isOpen() && ::flock(file.number(), LOCK_EX | LOCK_NB) == 0) {
            ::unlink(path.c_str()); // failure is ignored: the file may belong to another user
        }
    }
}

/// Returns the mode of a new file. Call it before other threads exist, because it changes the mask briefly.
mode_t modeOfNewFile() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

/// Gives the temporary file the owner and mode of the log that it will replace, or the mode of a new file.
void setOwnerAndMode(int descriptor, const std::string& file) {
    struct stat status {};
    if (::lstat(file.c_str(), &status) != 0) {
        if (errno != ENOENT) {
            fail(file, Common::messageOf(errno));
        }
        if (::fchmod(descriptor, modeOfNewFile()) != 0) {
            fail(file, Common::messageOf(errno));
        }
        return;
    }
    struct stat created {};
    if (::fstat(descriptor, &created) != 0) {
        fail(file, Common::messageOf(errno));
    }
    const bool isSameOwner = created.st_uid == status.st_uid && created.st_gid == status.st_gid;
    if (!isSameOwner && ::fchown(descriptor, status.st_uid, status.st_gid) != 0) {
        fail(file, "cannot keep its owner: " + Common::messageOf(errno));
    }
    if (::fchmod(descriptor, status.st_mode & 07777) != 0) {
        fail(file, Common::messageOf(errno));
    }
}

} // namespace

LogFile::TemporaryFile LogFile::create(const std::string& file) {
    struct stat status {};
    if (::lstat(file.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        fail(file, "not a regular file");
    }
    const std::string prefix = temporaryPrefix(file);
    removeAbandoned(prefix);
    for (;;) {
        std::string path = prefix + "XXXXXX";
        Common::Descriptor created(::mkostemp(path.data(), O_CLOEXEC));
        if (!created.isOpen()) {
            fail(file, Common::messageOf(errno));
        }
        ::flock(created.number(), LOCK_EX | LOCK_NB); // if locks are not supported, abandoned files stay
        if (::fstat(created.number(), &status) == 0 && status.st_nlink != 0) {
            return {std::move(path), Common::Descriptor(created.release())};
        }
        // Another scan removed the file as abandoned before it was locked.
    }
}

LogFile::LogFile(const std::string& file)
    : m_file(file),
      m_temporary(create(m_file)),
      m_buffer(m_temporary.descriptor.number()),
      m_stream(&m_buffer) {
    try {
        setOwnerAndMode(m_temporary.descriptor.number(), m_file);
    } catch (const std::runtime_error&) {
        ::unlink(m_temporary.path.c_str());
        throw;
    }
}

LogFile::~LogFile() {
    if (!m_isCommitted) {
        ::unlink(m_temporary.path.c_str());
    }
}

void LogFile::commit() {
    m_stream.flush();
    if (!m_stream) {
        fail(m_file, Common::messageOf(m_buffer.error()));
    }
    // Syncs, because a power failure could otherwise leave an empty log. EINVAL: the file system does not
    // support fsync.
    if (::fsync(m_temporary.descriptor.number()) != 0 && errno != EINVAL) {
        fail(m_file, Common::messageOf(errno));
    }
    if (::close(m_temporary.descriptor.release()) != 0 ||
        std::rename(m_temporary.path.c_str(), m_file.c_str()) != 0) {
        fail(m_file, Common::messageOf(errno));
    }
    m_isCommitted = true;
}

} // namespace Nerix
