#pragma once

#include "Common/Base/Descriptor.h"
#include "Executables/NerixHost/DescriptorBuffer.h"

#include <ostream>
#include <string>

namespace Nerix {

/// Writes a file under a temporary name in the same directory, ".nerix-CHECKSUM-RANDOM". commit() renames it,
/// so the file is always complete, and an earlier one stays until then. Keeps the owner and mode of the file
/// that it replaces. Only one thread at a time may use it.
class LogFile {
public:
    /// Creates the temporary file, after removing those that killed processes left for the same name. Throws
    /// std::runtime_error if the file cannot be created, if the name exists and is not a regular file, or if
    /// its owner cannot be kept. Call it before other threads exist.
    explicit LogFile(const std::string& file);

    /// Removes the temporary file unless it was committed.
    ~LogFile();

    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    /// Returns the stream for the content. Its state becomes bad at the first failed write.
    std::ostream& stream() { return m_stream; }

    /// Gives the file its final name. Throws std::runtime_error if it could not be written completely; an
    /// earlier file is then unchanged.
    void commit();

private:
    struct TemporaryFile {
        std::string path;
        Common::Descriptor descriptor; ///< locked
    };

    static TemporaryFile create(const std::string& file);

    const std::string m_file;
    TemporaryFile m_temporary;
    DescriptorBuffer m_buffer;
    std::ostream m_stream;
    bool m_isCommitted = false;
};

} // namespace Nerix
