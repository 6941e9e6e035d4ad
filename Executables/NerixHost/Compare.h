#pragma once

#include "Executables/NerixHost/CommandLine.h"

namespace Nerix {

/// Prints a line for each entry that differs between two scan logs. Returns the exit status: 0 if there are
/// none, otherwise 1. Throws ScanLogError if a log cannot be used; if a log changes during the comparison,
/// this may happen after some lines. Throws std::ios_base::failure if standard output, whose exceptions are
/// on, cannot be written.
int compare(const CompareRequest& request);

} // namespace Nerix
