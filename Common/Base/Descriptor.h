#pragma once

#include <utility>

#include <unistd.h>

namespace Nerix::Common {

/// Owns a file descriptor and closes it when destroyed. -1 means that it owns none.
class Descriptor {
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() {
        if (m_number != -1) {
            ::close(m_number);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool isOpen() const { return m_number != -1; }
    int number() const { return m_number; }

    /// Returns the descriptor, which the caller then owns.
    int release() { return std::exchange(m_number, -1); }

private:
    int m_number;
};

} // namespace Nerix::Common
