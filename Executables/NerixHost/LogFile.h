#pragma once

#include "Common/Base/Descriptor.h"
#include "Executables/NerixHost/DescriptorBuffer.h"

#include <ostream>
#include <string>

namespace Nerix {

/// A file that appears only when it is complete: it is written under a temporary name in the same directory,
/// ".nerix-" and characters that nobody can guess, and renamed by commit(). It keeps the owner and mode of
/// the file that it replaces. One thread at a time may use it.
class LogFile {
public:
    /// Also removes what killed processes left of earlier files of this name. Throws std::runtime_error when
    /// it cannot be written there, if the name exists and is not a regular file, or if its owner cannot be
    /// kept.
    explicit LogFile(const std::string& file);

    /// Removes what was written unless it was committed.
    ~LogFile();

    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    /// The stream's state becomes bad at the first failed write.
    std::ostream& stream() { return m_stream; }

    /// Puts the file in place. Throws std::runtime_error if anything could not be written; the file is then
    /// not created.
    void commit();

private:
    const std::string m_file;
    std::string m_partial; ///< the name until it is complete
    Common::Descriptor m_descriptor;
    DescriptorBuffer m_buffer;
    std::ostream m_stream;
    bool m_isCommitted = false;
};

} // namespace Nerix
