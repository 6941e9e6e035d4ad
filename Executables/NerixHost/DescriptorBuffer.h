#pragma once

#include <streambuf>
#include <vector>

namespace Nerix {

/// A buffer for an output stream that writes to a descriptor. It stores the errno of a failed write, which
/// the standard file buffer leaves only in the writing thread. The destructor does not write, so flush the
/// stream first. Only one thread at a time may use it.
class DescriptorBuffer final : public std::streambuf {
public:
    /// Writes to the descriptor, which the caller owns and must keep open.
    explicit DescriptorBuffer(int descriptor);

    /// Returns the errno of the last write, or 0 if it succeeded.
    int error() const { return m_error; }

protected:
    int_type overflow(int_type character) override;
    int sync() override;

private:
    const int m_descriptor;
    int m_error = 0;
    std::vector<char> m_bytes; ///< on the heap, because stacks may be small
};

} // namespace Nerix
