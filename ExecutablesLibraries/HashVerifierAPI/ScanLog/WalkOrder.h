#pragma once

#include <string_view>

/// The order of a scan log: a directory's entries by the bytes of their names, and each directory behind all
/// that is below it. Paths are absolute, without a slash at the end but for "/" itself.
namespace Nerix {

/// Below 0 when a walk reports the entry a before b, above 0 when after, 0 when they are the same.
int compareInWalkOrder(std::string_view a, std::string_view b);

/// Whether the directory contains the entry, at any depth. A directory is not below itself.
bool isBelow(std::string_view entry, std::string_view directory);

} // namespace Nerix
