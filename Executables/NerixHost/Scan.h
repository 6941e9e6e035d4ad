#pragma once

#include "Executables/NerixHost/CommandLine.h"

namespace Nerix {

/// Verifies the tree in this process and leaves no trace on the machine; see HostState.h. Prints its
/// value, on standard error when standard output has the log, and returns the exit status: 0 for a value that
/// is the expected one, 1 after one sentence on standard error, 2 after one on a file whose content could not
/// be read to its end. Call it from main, once, before other threads exist. Throws std::ios_base::failure
/// when standard output, whose exceptions are on, cannot be written.
int scan(const ScanRequest& request);

} // namespace Nerix
