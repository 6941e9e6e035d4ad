#pragma once

#include <boost/filesystem/path.hpp>

#include <sys/stat.h>

namespace Nerix {

/// One entry of a file system: its path and the status that lstat gave for it when the object was made, so
/// for a symbolic link it describes the link itself. Never refreshed; cheap to copy.
struct FileInput {
    /// The path is used exactly as given: its text enters the hash, unless the caller of the run chose
    /// another root for that (RunOptions.h). Throws GenericException "access error: can't LSTAT file: " +
    /// quoted path, with the path and the errno as further entries (AccessError.h).
    explicit FileInput(boost::filesystem::path entryPath);

    boost::filesystem::path path;
    struct stat status;
};

/// Calls lstat on path. Throws like the constructor of FileInput.
struct stat statusOf(const boost::filesystem::path& path);

} // namespace Nerix
