#pragma once

#include "Common/Utils/Descriptor.h"

#include <boost/filesystem/path.hpp>

#include <cstdio>
#include <memory>

namespace Nerix::FileScanners {

/// The content of a regular file as a stream, opened so that nothing that takes the file's place after it was looked at can
/// hold up the run or lead it elsewhere: a link is not followed, a pipe's writer is not waited for. A lease that another
/// process holds on the file is waited for, as any open would.
///
/// Once a signal has asked the process to end, the waiting and the content end.
class ContentStream {
public:
    /// Throws GenericException "access error: can't read content of file: " + quoted path.
    explicit ContentStream(const boost::filesystem::path& path);

    /// At the file's beginning; it belongs to this object.
    std::FILE* get() const { return m_stream.get(); }

private:
    struct Closer {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };

    // Destroyed in the opposite order: the stream uses the others until it is closed.
    Common::Utils::Descriptor m_descriptor;
    /// The steps take 4096 bytes each; a system call for each of them would cost a sixth of a fast digest.
    char m_buffer[131072];
    std::unique_ptr<std::FILE, Closer> m_stream;
};

} // namespace Nerix::FileScanners
