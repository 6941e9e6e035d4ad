#pragma once

#include <filesystem>

namespace Nerix::Platform::Host {

/// Makes directory, and what is missing on the way to it, with mode 0700, and gives its path without links.
///
/// Throws std::system_error when it cannot be made, does not belong to this user or may be written by its
/// group or others, and when somebody else could put another one in its place: on the way there are only
/// directories and links of this user and of the system, and a directory that everybody may write is sticky,
/// as /tmp is. In a user name space that does not know root, whoever else it does not know counts as the
/// system, too: they look the same. Any thread may call.
std::filesystem::path ownDirectory(const std::filesystem::path& directory);

} // namespace Nerix::Platform::Host
