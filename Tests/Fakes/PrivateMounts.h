#pragma once

namespace Nerix::Tests {

/// Gives the process a name space of its own for mounts and an empty directory in memory at path, which must
/// exist. Nothing outside the process sees it. False where the machine or the user may not do that.
bool mountPrivately(const char* path);

/// Lets the process read an empty mount table, so that its runs find none of the machine's drives. False as
/// above.
bool hideMountTable();

} // namespace Nerix::Tests
