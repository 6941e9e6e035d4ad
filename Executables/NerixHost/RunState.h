#pragma once

#include "HostPlatform/SettingsStore.h"

#include <string>

namespace Nerix {

/// Whether the setting is the status or result of a run whose process is gone without having published its
/// end. Reads the setting again. Throws std::runtime_error when the store cannot be read.
bool isOfKilledRun(const Platform::Host::Setting& setting);

/// The state of the current or last verification, from the settings store. The strings are empty if there was
/// none.
struct RunState {
    std::string status; ///< as published, or "killed"
    std::string progress;
    std::string result;
    std::string writer; ///< the process that published the result
    bool isRunning;

    /// Throws std::runtime_error when the store cannot be read.
    static RunState read();
};

} // namespace Nerix
