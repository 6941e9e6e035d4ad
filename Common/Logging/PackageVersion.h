#pragma once

namespace Nerix::Common {

/// The version of the update package, shown in every log record, in the help of NerixVerifierHash and by
/// NerixHost --version.
constexpr const char* packageVersion = "0.348.0";

} // namespace Nerix::Common
