#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/ContentStream.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/AccessError.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/ContentOpening.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace Nerix::FileScanners {

ContentStream::ContentStream(const boost::filesystem::path& path, std::uint64_t size)
    : m_path(path),
      m_size(size),
      m_descriptor(openContent(path)),
      // Not fdopen: the read function notices signals and replaced files.
      m_stream(m_descriptor.isOpen() ? ::fopencookie(this, "r", {&read, nullptr, nullptr, nullptr})
                                     : nullptr) {
    if (!m_stream) {
        throwUnreadable(errno);
    }
    std::setvbuf(m_stream.get(), m_buffer, _IOFBF, sizeof m_buffer);
}

void ContentStream::throwIfReplaced() const {
    if (m_isReplaced) {
        throwUnreadable(0);
    }
}

void ContentStream::throwUnreadable(int error) const {
    BOOST_THROW_EXCEPTION(accessError("read", m_path, error) << Common::Utils::errinfo_stream(
                              "access error: can't read content of file: ", m_path));
}

ssize_t ContentStream::read(void* self, char* buffer, std::size_t size) {
    if (HashFunctions::StepObserver::currentShouldStop()) {
        return 0; // stopping: the run will fail when this file is reported
    }
    auto& content = *static_cast<ContentStream*>(self);
    const ssize_t count = ::read(content.m_descriptor.number(), buffer, size);
    if (count < 0) {
        content.m_readError = errno;
    }
    content.m_readBytes += static_cast<std::uint64_t>(std::max<ssize_t>(count, 0));
    const bool isAsExpected =
        count > 0 ? content.m_readBytes <= content.m_size : content.m_readBytes == content.m_size;
    return isAsExpected || content.isStillRegularFile() ? count : 0;
}

bool ContentStream::isStillRegularFile() {
    // Checked only if the size differs; checking every file would add 2.5 % to a run.
    if (!m_isChecked) {
        m_isChecked = true;
        struct stat status {};
        m_isReplaced = ::fstat(m_descriptor.number(), &status) != 0 || !S_ISREG(status.st_mode);
    }
    return !m_isReplaced;
}

} // namespace Nerix::FileScanners
