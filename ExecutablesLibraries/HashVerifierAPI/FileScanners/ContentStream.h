#pragma once

#include "Common/Utils/Descriptor.h"

#include <boost/filesystem/path.hpp>

#include <cstdint>
#include <cstdio>
#include <memory>

#include <sys/types.h>

namespace Nerix::FileScanners {

/// The content of a regular file as a stream, opened so that what takes the file's place after it was looked
/// at neither holds up the run nor is taken for the file: a link is not followed (one in place of a directory
/// on the way is), a pipe's writer is not waited for, and what turns out to be no regular file is given up. A
/// lease that another process holds on the file is waited for, as any open would.
///
/// Once a signal has asked the process to end, the waiting and the content end.
class ContentStream {
public:
    /// size: the file's, in bytes, when it was looked at. Throws GenericException "access error: can't read
    /// content of file: " + quoted path.
    ContentStream(const boost::filesystem::path& path, std::uint64_t size);

    /// At the file's beginning; it belongs to this object.
    std::FILE* get() const { return m_stream.get(); }

    /// To be called when the content was read. Throws as the constructor when it was not that of a
    /// regular file.
    void throwIfReplaced() const;

private:
    struct Closer {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };

    static ssize_t read(void* self, char* buffer, std::size_t size);
    bool isWhatItWas();
    [[noreturn]] void refuse() const;

    const boost::filesystem::path& m_path;
    const std::uint64_t m_size;
    std::uint64_t m_readBytes = 0;
    bool m_isChecked = false;
    bool m_isReplaced = false;
    // Destroyed in the opposite order: the stream uses the others until it is closed.
    Common::Utils::Descriptor m_descriptor;
    /// The steps take 4096 bytes each; a system call for each of them would cost a sixth of a fast digest.
    char m_buffer[131072];
    std::unique_ptr<std::FILE, Closer> m_stream;
};

} // namespace Nerix::FileScanners
