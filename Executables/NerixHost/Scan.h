#pragma once

#include "Executables/NerixHost/CommandLine.h"

namespace Nerix {

/// Scans each tree in this process, with its state in memory (see HostState.h), and prints its value: to
/// standard output, or to standard error if the log goes to standard output. Prints an error message for each
/// thing that cannot be read. Returns the exit status: 0; 1 if the value is not the expected one; 2 if
/// something cannot be read. Throws std::runtime_error with a sentence for the user if the log cannot be
/// written, and std::ios_base::failure if standard output cannot be written. Call it once, from main, before
/// other threads exist.
int scan(const ScanRequest& request);

} // namespace Nerix
