#pragma once

#include <new>
#include <utility>

namespace Nerix::Common {

/// Holds a static object that is never destroyed, because a thread or another static object may use it while
/// the process ends:
///
///     static NoDestructor<std::map<int, std::string>> names;
///
/// The object is stored inside the NoDestructor, so a leak checker can reach what it owns.
template <class T>
class NoDestructor {
public:
    /// Constructs the object from the arguments. Throws what its constructor throws.
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
