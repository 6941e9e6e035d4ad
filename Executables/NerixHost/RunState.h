#pragma once

#include "HostPlatform/SettingsStore.h"

#include <string>

namespace Nerix {

/// Returns true if the setting has the value of an active run's status or result, but the process that wrote
/// it is gone. Reads the setting again. Throws std::runtime_error if the store cannot be read.
bool isOfKilledRun(const Platform::Host::Setting& setting);

/// The state of the current or last run, from the settings store. The strings are empty if there was none.
struct RunState {
    std::string status; ///< as published, or "killed"
    std::string progress;
    std::string result;
    std::string writer; ///< the process that published the result
    bool isRunning;

    /// Reads the state from the store. Throws std::runtime_error if that fails.
    static RunState read();
};

} // namespace Nerix
