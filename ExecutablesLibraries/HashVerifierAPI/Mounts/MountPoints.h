#pragma once

#include <boost/core/noncopyable.hpp>

#include <istream>
#include <map>
#include <string>
#include <vector>

namespace Nerix {

/// A mount table as it was when it was read; later mounts are not noticed. The line for "/" is skipped;
/// otherwise a walk of "/" would stop immediately. Immutable after creation; any thread may ask.
class MountPoints : private boost::noncopyable {
public:
    /// The table of this process, read when first asked for.
    static MountPoints& getInstance();

    /// Reads /proc/mounts; the table is empty when that cannot be read.
    MountPoints();

    /// Reads lines whose first two words, separated by blanks, are device and mount directory; the rest of a
    /// line does not matter. Escapes such as \040 are not decoded.
    explicit MountPoints(std::istream&& table);

    /// Whether something is mounted on the directory, spelled exactly as in the table: the look-up by key in
    /// m_mountPoints that a walk makes.
    bool isMountPoint(const std::string& directory) const { return m_mountPoints.count(directory) != 0; }

    /// The mount directory of the USB drive: the last in the table that lies below the product's USB mount
    /// path or the file-system root's "media" ("/media" for an empty root), the paths themselves included.
    /// Empty when there is none. If the platform has no USB mount path, only "media" is searched (an empty
    /// prefix would match every mount). Throws ProductUninitializedException before
    /// IProductInfo::initializeProduct.
    std::string findUSB() const;

private:
    std::map<std::string, std::string> m_mountPoints; ///< mount directory to mounted device
    std::vector<std::string> m_mountOrder; ///< as in the table; a directory mounted twice stands twice
};

} // namespace Nerix
