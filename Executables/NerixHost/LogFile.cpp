#include "Executables/NerixHost/LogFile.h"

#include "Executables/NerixHost/QuotedName.h"

#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Nerix {

namespace {

[[noreturn]] void fail(const std::string& file, const std::string& reason) {
    throw std::runtime_error("cannot write " + quotedName(file) + ": " + reason);
}

std::string messageOf(int error) {
    return std::generic_category().message(error);
}

int create(const std::string& file, const std::string& partial) {
    struct stat status {};
    if (::lstat(file.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        fail(file, "it is no regular file");
    }
    ::unlink(partial.c_str()); // of a process of the same id that was killed
    const int descriptor = ::open(partial.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor == -1) {
        fail(file, messageOf(errno));
    }
    return descriptor;
}

} // namespace

LogFile::LogFile(const std::string& file)
    : m_file(file),
      m_partial(file + ".part-" + std::to_string(::getpid())),
      m_descriptor(create(m_file, m_partial)),
      m_buffer(m_descriptor.number()),
      m_stream(&m_buffer) {}

LogFile::~LogFile() {
    if (!m_isCommitted) {
        ::unlink(m_partial.c_str());
    }
}

void LogFile::commit() {
    m_stream.flush();
    if (!m_stream) {
        fail(m_file, messageOf(m_buffer.error()));
    }
    if (::close(m_descriptor.release()) != 0 || std::rename(m_partial.c_str(), m_file.c_str()) != 0) {
        fail(m_file, messageOf(errno));
    }
    m_isCommitted = true;
}

LogFile::Buffer::int_type LogFile::Buffer::overflow(int_type character) {
    if (sync() != 0) {
        return traits_type::eof();
    }
    return traits_type::eq_int_type(character, traits_type::eof())
               ? traits_type::not_eof(character)
               : sputc(traits_type::to_char_type(character));
}

int LogFile::Buffer::sync() {
    for (const char* begin = pbase(); begin != pptr();) {
        const ssize_t count = ::write(m_descriptor, begin, static_cast<std::size_t>(pptr() - begin));
        if (count < 0 && errno != EINTR) {
            m_error = errno;
            return -1;
        }
        begin += count > 0 ? count : 0;
    }
    setp(m_bytes, m_bytes + sizeof m_bytes);
    return 0;
}

} // namespace Nerix
