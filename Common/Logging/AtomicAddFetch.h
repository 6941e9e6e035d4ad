#pragma once

#include <cstdint>

namespace Nerix::Common::PlatformDependent {

/// Adds delta to *value atomically and returns the new value. Thread-safe.
// NOLINTNEXTLINE(readability-non-const-parameter): the builtin writes through it
inline std::uint32_t atomic_add_fetch(std::uint32_t* value, std::uint32_t delta) {
    return __atomic_add_fetch(value, delta, __ATOMIC_RELAXED);
}

} // namespace Nerix::Common::PlatformDependent
