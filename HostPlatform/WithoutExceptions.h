#pragma once

#include <cerrno>

namespace Nerix::Platform::Host {

/// Runs the body of a C function and returns its result code, or ENOMEM if it throws: exceptions must not
/// reach C callers. In practice only std::bad_alloc is thrown.
template <class Body>
int withoutExceptions(Body body) noexcept {
    try {
        return body();
    } catch (...) {
        return ENOMEM;
    }
}

} // namespace Nerix::Platform::Host
