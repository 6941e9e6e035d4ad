#pragma once

#include "Executables/NerixHost/CommandLine.h"

namespace Nerix {

/// Prints all settings or one setting, or watches a run. Returns the exit status: 0 on success, 1 if the
/// setting does not exist (after printing that to standard error) or if the watched run failed. Throws
/// std::runtime_error if the store cannot be read, and std::ios_base::failure if standard output, whose
/// exceptions are on, cannot be written.
int settings(const SettingsRequest& request);

} // namespace Nerix
