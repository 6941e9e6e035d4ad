#pragma once

#include "HostPlatform/SettingsStore.h"

namespace Nerix {

/// Whether the status or result is that of a run that has not ended: "active", or "00000111", which is
/// published first.
bool isOfRun(const Platform::Host::Setting& setting);

/// The same, but false when the run's process is gone: it was killed.
bool isOfLiveRun(const Platform::Host::Setting& setting);

} // namespace Nerix
