#pragma once

#include "HostPlatform/SettingsStore.h"

#include <string>

namespace Nerix {

/// Whether the status or result is that of a run that has not ended: "active", or "00000111", which is
/// published first.
bool isOfRun(const Platform::Host::Setting& setting);

/// The same, but false when the run's process is gone: it was killed.
bool isOfLiveRun(const Platform::Host::Setting& setting);

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
