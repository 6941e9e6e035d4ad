#pragma once

namespace Nerix::Common {

/// The version of the update package, shown in log records and by NerixVerifierHash and NerixHost.
constexpr const char* packageVersion = "0.348.0";

} // namespace Nerix::Common
