#pragma once

#include <cstddef>
#include <cstdint>

namespace Nerix::Common::IO {

/// The end of a data path: data is pushed in chunk by chunk, then the end is marked, once. After that the
/// sink has its result and refuses further data. One thread at a time may use a sink.
class ISink {
public:
    virtual ~ISink() = default;

    /// Consumes length bytes, 0 included. Throws EndOfDataMarkedException after the end.
    virtual void writeChunk(const std::uint8_t* data, std::size_t length) = 0;

    /// Declares that no more data follows and finishes the result. Throws EndOfDataMarkedException the
    /// second time.
    virtual void markEndOfData() = 0;

    /// Returns true if markEndOfData has been called.
    virtual bool endOfDataMarked() = 0;

    /// Every sink must call this first in writeChunk and markEndOfData. Throws EndOfDataMarkedException,
    /// which carries the sink as its subject, when the end is marked.
    void throwIfEndOfDataMarked();
};

} // namespace Nerix::Common::IO
