#pragma once

#include <chrono>
#include <cstdint>

namespace Nerix::Common::Logging {

/// Whether at least maxAllowedMs whole milliseconds have passed since start. The first call in the process
/// fixes the limit; the argument of every later call is ignored.
bool maxElapsed(std::chrono::time_point<std::chrono::steady_clock, std::chrono::nanoseconds> start,
                std::uint32_t maxAllowedMs);

} // namespace Nerix::Common::Logging
