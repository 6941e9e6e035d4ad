#pragma once

#include <new>
#include <utility>

namespace Nerix::Common {

/// A static object that is never destroyed, for whatever a thread or another static object may still use
/// while the process ends:
///
///     static NoDestructor<std::map<int, std::string>> answers;
///
/// The object lives in place, so what it owns stays reachable for a leak checker.
template <class T>
class NoDestructor {
public:
    /// Constructs T from the arguments. Throws what its constructor throws.
    template <class... Arguments>
    explicit NoDestructor(Arguments&&... arguments) {
        ::new (m_storage) T(std::forward<Arguments>(arguments)...);
    }

    NoDestructor(const NoDestructor&) = delete;
    NoDestructor& operator=(const NoDestructor&) = delete;

    T& operator*() { return *std::launder(reinterpret_cast<T*>(m_storage)); }
    T* operator->() { return &**this; }

private:
    alignas(T) unsigned char m_storage[sizeof(T)];
};

} // namespace Nerix::Common
