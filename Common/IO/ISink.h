#pragma once

#include <cstddef>
#include <cstdint>

namespace Nerix::Common::IO {

/// The receiving end of a data path. Write the data chunk by chunk, then mark its end once. The result is
/// then available, and writing more data is an error. Only one thread at a time may use a sink.
class ISink {
public:
    virtual ~ISink() = default;

    /// Consumes length bytes, which may be 0. Throws EndOfDataMarkedException if the end has been marked.
    virtual void writeChunk(const std::uint8_t* data, std::size_t length) = 0;

    /// Marks the end of the data and completes the result. Throws EndOfDataMarkedException if called again.
    virtual void markEndOfData() = 0;

    /// Returns true if markEndOfData has been called.
    virtual bool endOfDataMarked() = 0;

    /// Throws EndOfDataMarkedException, with the sink as its subject, if the end has been marked. Every sink
    /// must call this first in writeChunk and markEndOfData.
    void throwIfEndOfDataMarked();
};

} // namespace Nerix::Common::IO
