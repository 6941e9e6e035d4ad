#pragma once

#include <filesystem>
#include <string>

namespace Nerix {

/// Returns the whole path of the log, without links. Throws std::runtime_error where the log would change the
/// value of the tree at root, which is a canonical path: in the tree, under whatever name its directory is
/// mounted, or in place of a file that may be another name of one in the tree. Throws
/// std::filesystem::filesystem_error when the path cannot be resolved.
std::filesystem::path logOutside(const std::filesystem::path& root, const std::string& logFile);

} // namespace Nerix
