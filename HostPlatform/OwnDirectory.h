#pragma once

#include <filesystem>

namespace Nerix::Platform::Host {

/// Creates the directory and its missing parents with mode 0700, and returns its path without links.
///
/// Throws std::system_error when it cannot be created, belongs to another user, may be written by its group
/// or others, or could be replaced by somebody else: every directory and link on the way must belong to this
/// user or to root, and one that everybody may write must be sticky, as /tmp is. In a user name space without
/// root, all unmapped owners count as root: they look the same. Any thread may call.
std::filesystem::path ownDirectory(const std::filesystem::path& directory);

} // namespace Nerix::Platform::Host
