#pragma once

#include <chrono>
#include <cstdint>

namespace Nerix::Common::Logging {

/// Returns true if at least maxAllowedMs milliseconds have passed since start. The first call sets the limit
/// for the whole process; later calls ignore maxAllowedMs.
bool maxElapsed(std::chrono::time_point<std::chrono::steady_clock, std::chrono::nanoseconds> start,
                std::uint32_t maxAllowedMs);

} // namespace Nerix::Common::Logging
