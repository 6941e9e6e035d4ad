#pragma once

#include <streambuf>
#include <vector>

namespace Nerix {

/// The buffer of an output stream that writes to a descriptor, and that keeps the reason of a failure: the
/// standard's file buffer leaves it in the errno of the thread that wrote. What is in the buffer when it is
/// destroyed is lost: flush the stream before. One thread at a time may use it.
class DescriptorBuffer final : public std::streambuf {
public:
    /// The caller keeps the descriptor open.
    explicit DescriptorBuffer(int descriptor);

    /// The errno of the last write; 0 if it succeeded.
    int error() const { return m_error; }

protected:
    int_type overflow(int_type character) override;
    int sync() override;

private:
    const int m_descriptor;
    int m_error = 0;
    std::vector<char> m_bytes; ///< not in the object, for stacks that are small
};

} // namespace Nerix
