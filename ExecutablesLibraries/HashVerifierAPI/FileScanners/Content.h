#pragma once

#include "Common/Base/Descriptor.h"

#include <boost/core/noncopyable.hpp>
#include <boost/filesystem/path.hpp>

#include <cstddef>
#include <cstdint>

namespace Nerix::FileScanners {

/// Reads the content of a regular file. The file may have been replaced since its status was read, so
/// anything but a regular file is rejected.
///
/// A read error ends the content, too: readError tells them apart. A termination signal makes reads return
/// the end of the file.
class Content : private boost::noncopyable {
public:
    /// path must outlive the object. size: the file's, in bytes, from its status. descriptor: as openContent
    /// returns it (ContentOpening.h), with errno still set if it is -1. Throws GenericException "access
    /// error: can't read content of file: " + quoted path if it is -1.
    Content(const boost::filesystem::path& path, std::uint64_t size, int descriptor);

    /// Reads up to size bytes. Returns how many; 0 at the end of the content.
    std::size_t read(char* buffer, std::size_t size);

    /// Returns the errno of the read that failed and so ended the content, or 0 if none did.
    int readError() const { return m_readError; }

    /// Call this after reading. Throws like the constructor if the file was not regular after all.
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
