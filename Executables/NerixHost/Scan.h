#pragma once

#include "Executables/NerixHost/CommandLine.h"

namespace Nerix {

/// Scans the tree in this process, with its state in memory (see HostState.h), and prints the value of the
/// tree: to standard output, or to standard error if the log goes to standard output. Returns EXIT_SUCCESS,
/// or EXIT_FAILURE after printing the value if another one is expected. Throws std::runtime_error with a
/// sentence for the user if something cannot be read or the log cannot be written, and std::ios_base::failure
/// if standard output cannot be written. Call it once, from main, before other threads exist.
int scan(const ScanRequest& request);

} // namespace Nerix
