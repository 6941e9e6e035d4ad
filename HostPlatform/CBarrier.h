#pragma once

#include <cerrno>

namespace Nerix::Platform::Host {

/// Runs the body of a C function and returns its code. Exceptions must not reach C callers, so any exception,
/// in practice only std::bad_alloc, becomes ENOMEM.
template <class Step>
int withoutExceptions(Step step) noexcept {
    try {
        return step();
    } catch (...) {
        return ENOMEM;
    }
}

} // namespace Nerix::Platform::Host
