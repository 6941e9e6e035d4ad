#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace Nerix {

class ChainSource;

/// Folds bytes into a chaining value: new value = f(old value, bytes). The value is the only state that goes
/// from one step to the next. Instances are immutable and may be used from any thread, several at once; a
/// StepObserver is notified of digest steps on its own thread.
class IHashFunction {
public:
    using hash_t = std::uint64_t;

    virtual ~IHashFunction() = default;

    /// One step over the length bytes at data.
    virtual hash_t apply(hash_t value, unsigned int length, const char* data) const = 0;

    /// One step over the bytes of text, without a terminator.
    virtual hash_t apply(hash_t value, const std::string& text) const = 0;

    /// One step per 4096-byte chunk from the current position to the end; the last chunk may be shorter, and
    /// an empty remainder has no step. A read error counts as the end. Does not close the stream; its owner
    /// can ask for the error (ContentStream::readError), of which a run warns in the system log.
    virtual hash_t apply(hash_t value, std::FILE* stream) const = 0;

    /// How many chains applyChains takes at a time, at least 1.
    virtual std::size_t lanes() const = 0;

    /// Takes steps of several chains at a time, on lanes 0 to lanes() - 1, until the source has nothing for
    /// any of them. The values are those that apply gives for each step; how many steps are computed together
    /// is the function's business, so not each of them makes a fresh sink, and StepObserver is told of some
    /// of the steps only: the source knows them all. Throws what apply and the source throw; chains in
    /// progress are lost then.
    virtual void applyChains(ChainSource& source) const = 0;
};

} // namespace Nerix
