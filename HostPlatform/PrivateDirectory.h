#pragma once

#include <filesystem>

namespace Nerix::Platform::Host {

/// Creates the directory and its missing parents with mode 0700, and returns its path without links.
///
/// Throws std::system_error if the directory cannot be created, belongs to another user, is writable by its
/// group or others, or could be replaced by another user: every directory and link along the path must belong
/// to this user or root, and world-writable ones must be sticky, like /tmp. In a user namespace without a
/// root mapping, all unmapped owners count as root, because they look the same. Thread-safe.
std::filesystem::path privateDirectory(const std::filesystem::path& directory);

} // namespace Nerix::Platform::Host
