#pragma once

#include "Executables/NerixHost/CommandLine.h"

namespace Nerix {

/// Scans the tree in this process, with its state in memory (see HostState.h), and prints the value of the
/// tree: to standard output, or to standard error if the log goes to standard output. Returns the exit
/// status:
///
/// - 0 if there is a value and it is the expected one
/// - 1 if not, after printing the reason to standard error
/// - 2 if a file could not be read to its end, after printing its name and the reason
///
/// Throws std::ios_base::failure if standard output, whose exceptions are on, cannot be written. Call it
/// once, from main, before other threads exist.
int scan(const ScanRequest& request);

} // namespace Nerix
