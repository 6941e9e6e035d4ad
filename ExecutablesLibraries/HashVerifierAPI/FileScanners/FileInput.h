#pragma once

#include <boost/filesystem/path.hpp>

#include <sys/stat.h>

namespace Nerix {

/// One entry of a file system: its path and the status that lstat returned for it when the object was
/// created, which for a symbolic link is that of the link itself. Never refreshed; cheap to copy.
struct FileInput {
    /// The path is used exactly as given: its text is hashed, unless RunOptions::hashedRoot replaces the
    /// root's part of it. Throws GenericException "access error: can't LSTAT file: " + quoted path, with the
    /// error information of AccessError.h.
    explicit FileInput(boost::filesystem::path entryPath);

    boost::filesystem::path path;
    struct stat status;
};

/// Calls lstat on path. Throws like the constructor of FileInput.
struct stat statusOf(const boost::filesystem::path& path);

} // namespace Nerix
