#pragma once

#include <string_view>

/// The order of records in a scan log: entries of a directory in byte order of their names, each directory
/// after its contents. Paths are absolute and, except "/", have no trailing slash.
namespace Nerix {

/// Returns a negative number if a walk reports entry a before b, a positive one if after, 0 if they are the
/// same.
int compareInWalkOrder(std::string_view a, std::string_view b);

/// Returns true if the directory contains the entry, at any depth. A directory is not below itself.
bool isBelow(std::string_view entry, std::string_view directory);

} // namespace Nerix
