#pragma once

#include <utility>

#include <unistd.h>

namespace Nerix::Common {

/// Owns an open file descriptor; -1 for none.
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

    /// Transfers ownership of the descriptor to the caller.
    int release() { return std::exchange(m_number, -1); }

private:
    int m_number;
};

} // namespace Nerix::Common
