#pragma once

#include "Executables/NerixHost/CommandLine.h"

namespace Nerix {

/// Prints which entries differ between two scan logs, a line each. Returns the exit status: 0 for none, 1 for
/// some. Throws ScanLogError for a log that cannot be used, also after some lines when it changes meanwhile,
/// and std::ios_base::failure when standard output, whose exceptions are on, cannot be written.
int compare(const CompareRequest& request);

} // namespace Nerix
