#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/ContentStream.h"

#include "Common/Utils/Errors/Errors.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/ContentOpening.h"

#include <new>

namespace Nerix::FileScanners {

ContentStream::ContentStream(const boost::filesystem::path& path, std::uint64_t size)
    : m_content(path, size, openContent(path)),
      // Not fdopen: the read function notices signals and replaced files.
      m_stream(::fopencookie(this, "r", {&read, nullptr, nullptr, nullptr})) {
    if (!m_stream) {
        throw std::bad_alloc(); // the only reason why it can fail
    }
    std::setvbuf(m_stream.get(), m_buffer, _IOFBF, sizeof m_buffer);
}

ssize_t ContentStream::read(void* self, char* buffer, std::size_t size) {
    return static_cast<ssize_t>(static_cast<ContentStream*>(self)->m_content.read(buffer, size));
}

} // namespace Nerix::FileScanners
