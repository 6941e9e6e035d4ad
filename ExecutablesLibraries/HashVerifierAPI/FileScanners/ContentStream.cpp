#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/ContentStream.h"

#include "Common/Utils/Errors.h"
#include "Common/Utils/TerminationSignals.h"

#include <cerrno>
#include <ctime>

#include <fcntl.h>
#include <unistd.h>

namespace Nerix::FileScanners {

namespace {

int openWithoutWaiting(const boost::filesystem::path& path) {
    for (;;) {
        const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
        if (descriptor != -1 || errno != EWOULDBLOCK || Common::Utils::terminationSignal() != 0) {
            return descriptor;
        }
        // A write lease, as file servers take them. The kernel has told its holder, and takes it away after a time
        // (fs.lease-break-time); nothing else answers like that.
        const std::timespec pause{0, 5'000'000};
        ::nanosleep(&pause, nullptr);
    }
}

ssize_t readDescriptor(void* descriptor, char* buffer, std::size_t size) {
    if (Common::Utils::terminationSignal() != 0) {
        return 0; // the worker ends the run when it is told of the file
    }
    return ::read(static_cast<const Common::Utils::Descriptor*>(descriptor)->number(), buffer, size);
}

} // namespace

ContentStream::ContentStream(const boost::filesystem::path& path)
    : m_descriptor(openWithoutWaiting(path)),
      // Not fdopen, which makes one more system call.
      m_stream(m_descriptor.isOpen()
                   ? ::fopencookie(&m_descriptor, "r", {&readDescriptor, nullptr, nullptr, nullptr})
                   : nullptr) {
    if (!m_stream) {
        BOOST_THROW_EXCEPTION(Common::Utils::GenericException() << Common::Utils::errinfo_stream(
                                  "access error: can't read content of file: ", path));
    }
    std::setvbuf(m_stream.get(), m_buffer, _IOFBF, sizeof m_buffer);
}

} // namespace Nerix::FileScanners
