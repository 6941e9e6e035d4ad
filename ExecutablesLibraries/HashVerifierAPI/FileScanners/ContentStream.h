#pragma once

#include "Common/Base/Descriptor.h"
#include "Common/Base/Files.h"

#include <boost/filesystem/path.hpp>

#include <cstdint>
#include <cstdio>

#include <sys/types.h>

namespace Nerix::FileScanners {

/// The content of a regular file as a stream. The file may have been replaced since its status was read, so
/// symbolic links are not followed, FIFOs do not block, and anything but a regular file is rejected. Like any
/// open, this waits for leases held by other processes (ContentOpening.h).
///
/// A read error ends the content, too: readError tells them apart. A termination signal ends the wait, and
/// makes reads return end of file.
class ContentStream {
public:
    /// size: the file's, in bytes, from its status. Throws GenericException "access error: can't read content
    /// of file: " + quoted path.
    ContentStream(const boost::filesystem::path& path, std::uint64_t size);

    /// The stream, positioned at the beginning and owned by this object.
    std::FILE* get() const { return m_stream.get(); }

    /// The errno of the read that failed and so ended the content; 0 when none did.
    int readError() const { return m_readError; }

    /// Call this after reading. Throws like the constructor if the file was not regular after all.
    void throwIfReplaced() const;

private:
    static ssize_t read(void* self, char* buffer, std::size_t size);
    bool isStillRegularFile();
    [[noreturn]] void throwUnreadable(int error) const;

    const boost::filesystem::path& m_path;
    const std::uint64_t m_size;
    std::uint64_t m_readBytes = 0;
    bool m_isChecked = false;
    bool m_isReplaced = false;
    int m_readError = 0;
    // Order matters: the stream uses the members above until it is closed.
    Common::Descriptor m_descriptor;
    /// The steps take 4096 bytes each; a system call for each of them would cost a sixth of a fast digest.
    char m_buffer[131072];
    Common::File m_stream;
};

} // namespace Nerix::FileScanners
