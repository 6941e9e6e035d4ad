#pragma once

#include <boost/core/noncopyable.hpp>

#include <istream>
#include <map>
#include <string>
#include <vector>

namespace Nerix {

/// A mount table as it was when it was read; later mounts are not noticed. The line for "/" is skipped.
/// Immutable after creation and thread-safe.
class MountPoints : private boost::noncopyable {
public:
    /// Returns the table of this process, which the first call reads.
    static MountPoints& getInstance();

    /// Reads /proc/mounts; the table is empty if that cannot be read.
    MountPoints();

    /// Reads lines whose first two words, separated by spaces or tabs, are device and mount directory; the
    /// rest of a line is ignored. Escapes such as \040 are not decoded.
    explicit MountPoints(std::istream&& table);

    /// Returns true if something is mounted on the directory, spelled exactly as in the table.
    bool isMountPoint(const std::string& directory) const { return m_mountPoints.count(directory) != 0; }

    /// Returns the mount directory of the USB drive: the last in the table that is below the product's USB
    /// mount path or the file-system root's "media" ("/media" for an empty root), the paths themselves
    /// included. Returns an empty text if there is none. If the platform has no USB mount path, only "media"
    /// is searched (an empty prefix would match every mount). Throws ProductUninitializedException before
    /// IProductInfo::initializeProduct.
    std::string findUSB() const;

private:
    std::map<std::string, std::string> m_mountPoints; ///< mount directory to mounted device
    std::vector<std::string> m_mountOrder; ///< as in the table; a directory mounted twice appears twice
};

} // namespace Nerix
