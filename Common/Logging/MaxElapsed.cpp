#include "Common/Logging/MaxElapsed.h"

namespace Nerix::Common::Logging {

bool maxElapsed(std::chrono::time_point<std::chrono::steady_clock, std::chrono::nanoseconds> start,
                std::uint32_t maxAllowedMs) {
    static const std::uint32_t limit = maxAllowedMs;
    const auto elapsed = std::chrono::steady_clock::now() - start;
    return std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count() >= std::int64_t{limit};
}

} // namespace Nerix::Common::Logging
