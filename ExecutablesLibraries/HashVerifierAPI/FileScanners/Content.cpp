#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Content.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/AccessError.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace Nerix::FileScanners {

Content::Content(const boost::filesystem::path& path, std::uint64_t size, int descriptor)
    : m_path(path), m_size(size), m_descriptor(descriptor) {
    if (!m_descriptor.isOpen()) {
        throwUnreadable(errno);
    }
}

std::size_t Content::read(char* buffer, std::size_t size) {
    if (HashFunctions::StepObserver::currentShouldStop()) {
        return 0; // the value of this file will not be used
    }
    const ssize_t result = ::read(m_descriptor.number(), buffer, size);
    if (result < 0) {
        m_readError = errno;
    }
    const std::size_t count = result < 0 ? 0 : static_cast<std::size_t>(result);
    m_readBytes += count;
    const bool isAsExpected = count > 0 ? m_readBytes <= m_size : m_readBytes == m_size;
    return isAsExpected || isStillRegularFile() ? count : 0;
}

void Content::throwIfReplaced() const {
    if (m_isReplaced) {
        throwUnreadable(0);
    }
}

void Content::throwUnreadable(int error) const {
    BOOST_THROW_EXCEPTION(accessError("read", m_path, error) << Common::Utils::errinfo_stream(
                              "access error: can't read content of file: ", m_path));
}

bool Content::isStillRegularFile() {
    // Checked only if the size differs, because checking every file would be slow.
    if (!m_isChecked) {
        m_isChecked = true;
        struct stat status {};
        m_isReplaced = ::fstat(m_descriptor.number(), &status) != 0 || !S_ISREG(status.st_mode);
    }
    return !m_isReplaced;
}

} // namespace Nerix::FileScanners
