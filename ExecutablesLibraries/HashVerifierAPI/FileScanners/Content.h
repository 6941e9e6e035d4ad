#pragma once

#include "Common/Base/Descriptor.h"

#include <boost/core/noncopyable.hpp>
#include <boost/filesystem/path.hpp>

#include <cstddef>
#include <cstdint>

namespace Nerix::FileScanners {

/// Reads the content of a regular file. The file may have been replaced since its status was read: if it does
/// not have the size from the status, Content rejects it unless it is still a regular file.
///
/// A read error also ends the content; readError distinguishes it from the end of the file. If the thread's
/// StepObserver requests a stop, read returns 0.
class Content : private boost::noncopyable {
public:
    /// path must outlive the object. size: of the file, in bytes, from its status. descriptor: the result of
    /// openContent (ContentOpening.h), which the object takes over. If it is -1, errno must still be that of
    /// openContent; the constructor then throws GenericException "access error: can't read content of file: "
    /// + quoted path.
    Content(const boost::filesystem::path& path, std::uint64_t size, int descriptor);

    /// Reads up to size bytes. Returns the number read, 0 at the end of the content.
    std::size_t read(char* buffer, std::size_t size);

    /// Returns the errno of the read error that ended the content, or 0 if there was none.
    int readError() const { return m_readError; }

    /// Throws like the constructor if the file was rejected as replaced. Call this after reading.
    void throwIfReplaced() const;

private:
    bool isStillRegularFile();
    [[noreturn]] void throwUnreadable(int error) const;

    const boost::filesystem::path& m_path;
    const std::uint64_t m_size;
    std::uint64_t m_readBytes = 0;
    bool m_isChecked = false;
    bool m_isReplaced = false;
    int m_readError = 0;
    const Common::Descriptor m_descriptor;
};

} // namespace Nerix::FileScanners
