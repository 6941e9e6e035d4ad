#pragma once

#include "Executables/NerixHost/CommandLine.h"

namespace Nerix {

/// Compares two trees, each given as a directory, which is scanned, or as a scan log. Prints the differences
/// on standard output and their number on standard error. Returns EXIT_SUCCESS if nothing differs, otherwise
/// EXIT_FAILURE. Throws ScanLogError if a log cannot be used, std::runtime_error if a tree cannot be read,
/// and std::ios_base::failure if standard output cannot be written.
int compare(const CompareRequest& request);

} // namespace Nerix
