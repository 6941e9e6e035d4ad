#pragma once

#include "HostPlatform/SettingsStore.h"

#include <string>
#include <variant>

namespace Nerix {

/// The value of a setting, of the type with which it was stored.
std::variant<std::string, int, double, bool> valueOf(const Platform::Host::Setting& setting);

/// Formats the value for display: control characters of a text as in the log (\n, \x1b), a number in the
/// shortest form that reads back.
std::string valueText(const Platform::Host::Setting& setting);

} // namespace Nerix
