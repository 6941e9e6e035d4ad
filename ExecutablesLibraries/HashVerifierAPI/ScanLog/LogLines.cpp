#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/LogLines.h"

#include <cerrno>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace Nerix {

namespace {

/// Longer than any record. The longest records consist mostly of attribute names: 64 KiB, or twice that if
/// each byte needs an '&'. A name has at least seven bytes with its terminator, and each adds a value of 16
/// digits.
constexpr std::size_t maxLineSize = 524288;
constexpr std::size_t blockSize = 65536;

} // namespace

LogLines::LogLines(const std::string& file) : m_name(file), m_file(std::fopen(file.c_str(), "re")) {
    struct stat status {};
    if (!m_file || ::fstat(::fileno(m_file.get()), &status) != 0) {
        throwError(Common::messageOf(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        throwError(Common::messageOf(EISDIR));
    }
    if (!S_ISREG(status.st_mode)) {
        m_file = copied(m_file.get());
        rewind();
    }
}

LogLines::LogLines(std::string name, Common::File file) : m_name(std::move(name)), m_file(std::move(file)) {
    rewind();
}

Common::File LogLines::copied(std::FILE* from) const {
    Common::File copy(std::tmpfile());
    if (!copy) {
        throwError("cannot be copied: " + Common::messageOf(errno));
    }
    std::vector<char> buffer(blockSize);
    while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), from)) {
        if (std::fwrite(buffer.data(), 1, size, copy.get()) != size) {
            throwError("cannot be copied: " + Common::messageOf(errno));
        }
    }
    if (std::ferror(from) != 0) {
        throwError("cannot be read: " + Common::messageOf(errno));
    }
    if (std::fflush(copy.get()) != 0) {
        throwError("cannot be copied: " + Common::messageOf(errno));
    }
    return copy;
}

void LogLines::rewind() {
    std::rewind(m_file.get());
    m_bytes.clear();
    m_begin = 0;
    m_number = 0;
}

bool LogLines::next() {
    std::size_t end = m_bytes.find('\n', m_begin);
    if (end == std::string::npos) {
        m_bytes.erase(0, m_begin);
        m_begin = 0;
    }
    while (end == std::string::npos) {
        const std::size_t searched = m_bytes.size();
        if (searched > maxLineSize) {
            throwError("line " + std::to_string(m_number + 1) + " is longer than any scan record");
        }
        if (!readMore()) {
            break;
        }
        end = m_bytes.find('\n', searched);
    }
    if (m_begin == m_bytes.size()) {
        return false;
    }
    m_isTerminated = end != std::string::npos;
    m_line = std::string_view(m_bytes).substr(m_begin, end - m_begin);
    m_begin = m_isTerminated ? end + 1 : m_bytes.size();
    ++m_number;
    return true;
}

bool LogLines::readMore() {
    const std::size_t before = m_bytes.size();
    m_bytes.resize(before + blockSize);
    const std::size_t count = std::fread(m_bytes.data() + before, 1, blockSize, m_file.get());
    m_bytes.resize(before + count);
    if (std::ferror(m_file.get()) != 0) {
        throwError("cannot be read: " + Common::messageOf(errno));
    }
    return count != 0;
}

void LogLines::throwError(const std::string& reason) const {
    throw ScanLogError(m_name + ": " + reason);
}

} // namespace Nerix
