#pragma once

#include <filesystem>
#include <string>

namespace Nerix {

/// Returns the absolute path of the log, without links. root is a canonical path. Throws std::runtime_error
/// if the log is not a regular file or could change the value of the tree at root: if it is in the tree, even
/// through another mount, or if it is a hard link of a file that may be in the tree; also if it is a symbolic
/// link that a user other than root and this one made. Throws std::filesystem::filesystem_error if the path
/// cannot be resolved.
std::filesystem::path logPathOutside(const std::filesystem::path& root, const std::string& logFile);

} // namespace Nerix
