#include "Executables/NerixHost/LogPlace.h"

#include "Common/Base/Descriptor.h"
#include "Executables/NerixHost/QuotedName.h"
#include "ExecutablesLibraries/HashVerifierAPI/Mounts/MountPoints.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/WalkOrder.h"

#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Nerix {

namespace {

namespace fs = std::filesystem;

/// The place of a file on its file system, independent of mount points.
struct Place {
    std::string device;
    fs::path path; ///< from the root of the file system
};

/// Decodes the octal escapes in the kernel's tables, such as "\040" for a space.
std::string decodedOctal(const std::string& text) {
    std::string plain;
    for (std::size_t index = 0; index != text.size(); ++index) {
        if (text[index] == '\\' && text.size() - index > 3) {
            plain += static_cast<char>(std::stoi(text.substr(index + 1, 3), nullptr, 8));
            index += 3;
        } else {
            plain += text[index];
        }
    }
    return plain;
}

std::string mountIdOf(int descriptor) {
    std::ifstream info("/proc/self/fdinfo/" + std::to_string(descriptor));
    for (std::string name, value; info >> name >> value;) {
        if (name == "mnt_id:") {
            return value;
        }
    }
    return "";
}

/// Returns the place of file, or nullopt if /proc does not show its mount.
std::optional<Place> placeOf(const fs::path& file) {
    const Common::Descriptor descriptor(::open(file.c_str(), O_PATH | O_CLOEXEC));
    const std::string mountId = descriptor.isOpen() ? mountIdOf(descriptor.number()) : "";
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);) {
        std::istringstream fields(line);
        std::string id;
        std::string parent;
        std::string device;
        std::string root;
        std::string directory;
        if (!(fields >> id >> parent >> device >> root >> directory) || id != mountId) {
            continue;
        }
        directory = decodedOctal(directory);
        if (directory != file && !isBelow(file.native(), directory)) {
            return std::nullopt;
        }
        const fs::path place = decodedOctal(root);
        return Place{device, directory == file ? place : place / file.lexically_relative(directory)};
    }
    return std::nullopt;
}

/// Returns true if the directory is the tree's root or below it on the same file system. Compares places on
/// the file system, because a directory of the tree can also have a path outside the tree, by a bind mount.
bool isInTreeOnFileSystem(const fs::path& directory, const fs::path& root) {
    const std::optional<Place> inner = placeOf(directory);
    const std::optional<Place> outer = placeOf(root);
    return inner && outer && inner->device == outer->device &&
           (inner->path == outer->path || isBelow(inner->path.native(), outer->path.native()));
}

/// Returns true if a scan of root would include files in the directory. Walks up the path of the directory;
/// compares device and inode numbers, because root may also be mounted under another path.
bool isInTree(const fs::path& directory, const fs::path& root) {
    struct stat rootStatus {};
    ::lstat(root.c_str(), &rootStatus);
    for (fs::path ancestor = directory;; ancestor = ancestor.parent_path()) {
        struct stat status {};
        if (::lstat(ancestor.c_str(), &status) != 0 || status.st_dev != rootStatus.st_dev) {
            return false;
        }
        if (status.st_ino == rootStatus.st_ino) {
            return true;
        }
        if (ancestor == ancestor.root_path() || MountPoints::getInstance().isMountPoint(ancestor.string())) {
            return false;
        }
    }
}

/// Returns true if the file has other hard links, and the tree may contain one of them.
bool mayBeLinkedInTree(const fs::path& file, const fs::path& root) {
    struct stat status {};
    struct stat rootStatus {};
    return ::lstat(file.c_str(), &status) == 0 && ::lstat(root.c_str(), &rootStatus) == 0 &&
           S_ISREG(status.st_mode) && status.st_nlink > 1 && status.st_dev == rootStatus.st_dev;
}

/// Returns true if the file is a symbolic link that a user other than root and this one made. Such a link, in
/// a directory like /tmp, may lead to a file of this user.
bool isLinkOfOtherUser(const std::string& file) {
    struct stat status {};
    return ::lstat(file.c_str(), &status) == 0 && S_ISLNK(status.st_mode) && status.st_uid != 0 &&
           status.st_uid != ::geteuid();
}

} // namespace

fs::path logPathOutside(const fs::path& root, const std::string& logFile) {
    struct stat status {};
    const bool isStream = logFile.compare(0, 8, "/dev/std") == 0 || logFile.compare(0, 8, "/dev/fd/") == 0;
    if (isStream || (::stat(logFile.c_str(), &status) == 0 && !S_ISREG(status.st_mode))) {
        throw std::runtime_error("cannot write " + quotedName(logFile) + ": not a regular file" +
                                 (isStream ? "; use --log - for standard output" : ""));
    }
    if (isLinkOfOtherUser(logFile)) {
        throw std::runtime_error("the log " + quotedName(logFile) +
                                 " is a link that another user made; choose another name");
    }
    fs::path file = fs::weakly_canonical(fs::absolute(logFile));
    const fs::path directory = file.parent_path();
    if (file == root || isInTree(directory, root) || isInTreeOnFileSystem(directory, root)) {
        throw std::runtime_error(
            "the log " + quotedName(file.string()) +
            " is inside the tree to be scanned and would change its value; put it outside " +
            quotedName(root.string()));
    }
    if (mayBeLinkedInTree(file, root)) {
        throw std::runtime_error(
            "the log " + quotedName(file.string()) +
            " has other hard links, which may be inside the tree to be scanned; choose another name");
    }
    return file;
}

} // namespace Nerix
