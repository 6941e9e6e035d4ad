#pragma once

#include "Common/Base/Files.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Content.h"

#include <boost/filesystem/path.hpp>

#include <cstdint>
#include <cstdio>

#include <sys/types.h>

namespace Nerix::FileScanners {

/// The content of a regular file as a stream; see Content. Opening it waits for leases held by other
/// processes; see ContentOpening.h.
class ContentStream : private boost::noncopyable {
public:
    /// Opens the file. Throws what Content throws.
    ContentStream(const boost::filesystem::path& path, std::uint64_t size);

    /// Returns the stream, positioned at the beginning and owned by this object.
    std::FILE* get() const { return m_stream.get(); }

    const Content& content() const { return m_content; }

private:
    static ssize_t read(void* self, char* buffer, std::size_t size);

    Content m_content;
    /// A step reads only 4096 bytes; a system call for each step would be slow.
    char m_buffer[131072];
    Common::File m_stream; ///< must come last: it uses the other members until it is closed
};

} // namespace Nerix::FileScanners
