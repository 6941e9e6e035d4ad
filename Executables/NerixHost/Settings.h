#pragma once

#include "Executables/NerixHost/CommandLine.h"

namespace Nerix {

/// Lists the settings store, gets one setting, or watches a run. Returns the exit status: 0, or 1 after a
/// sentence on standard error when the setting is missing or the watched run gave no value. Throws
/// std::runtime_error when the store cannot be read, std::ios_base::failure when standard output, whose
/// exceptions are on, cannot be written.
int settings(const SettingsRequest& request);

} // namespace Nerix
