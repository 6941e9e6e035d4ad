#pragma once

#include "HostPlatform/SettingsStore.h"

#include <string>
#include <variant>

namespace Nerix {

/// Returns the value of a setting in the type in which it was stored.
std::variant<std::string, int, double, bool> valueOf(const Platform::Host::Setting& setting);

/// Formats the value for display. Escapes control characters in text as the log does (\n, \x1b), and writes a
/// number in the shortest form from which it can be parsed.
std::string valueText(const Platform::Host::Setting& setting);

} // namespace Nerix
