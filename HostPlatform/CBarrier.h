#pragma once

#include <cerrno>

namespace Nerix::Platform::Host {

/// Runs a step of a C function and gives its code: C callers cannot take exceptions. Out of memory, the only
/// one that gets here, is ENOMEM.
template <class Step>
int withoutExceptions(Step step) noexcept {
    try {
        return step();
    } catch (...) {
        return ENOMEM;
    }
}

} // namespace Nerix::Platform::Host
