#pragma once

#include <string>

namespace Nerix::Tests {

/// Gives the process a name space of its own for mounts and an empty directory in memory at path, which must
/// exist. Nothing outside the process sees it. False, with the reason, where the machine does not allow that.
bool mountPrivately(const std::string& path, std::string& reason);

/// Lets the process read an empty mount table, so that its runs find none of the machine's drives. False
/// where the machine does not allow that.
bool hideMountTable();

} // namespace Nerix::Tests
