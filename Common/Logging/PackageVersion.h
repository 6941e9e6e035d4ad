#pragma once

namespace Nerix::Common {

/// Version of the update package, shown in every log record and in the help of NerixVerifierHash.
constexpr const char* packageVersion = "0.348.0";

} // namespace Nerix::Common
