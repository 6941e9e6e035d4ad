#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace Nerix {

class ChainSource;

/// Folds bytes into a chaining value: new value = f(old value, bytes). The value is the only state that one
/// step passes to the next. Instances are immutable and may be used from any thread, several at once.
class IHashFunction {
public:
    using hash_t = std::uint64_t;

    virtual ~IHashFunction() = default;

    /// Takes one step over the length bytes at data. Returns the new value.
    virtual hash_t apply(hash_t value, unsigned int length, const char* data) const = 0;

    /// Takes one step over the bytes of text, without a terminator. Returns the new value.
    virtual hash_t apply(hash_t value, const std::string& text) const = 0;

    /// Takes one step per 4096-byte chunk from the current position to the end; the last chunk may be
    /// shorter, and an empty remainder has no step. Returns the new value. A read error counts as the end;
    /// the owner of the stream gets it from Content::readError. Does not close the stream.
    virtual hash_t apply(hash_t value, std::FILE* stream) const = 0;

    /// Returns true if apply reports each step to the thread's StepObserver, so that steps count as progress.
    virtual bool reportsSteps() const = 0;

    /// Returns the number of chains that applyChains computes at a time, at least 1.
    virtual std::size_t lanes() const = 0;

    /// Takes steps of several chains at a time, on lanes 0 to lanes() - 1, until the source has nothing for
    /// any of them. Each step has the value that apply returns for it. Which steps are computed together is
    /// up to the implementation. Not all of them are reported to the StepObserver; the source has supplied
    /// them and can count them. Throws what apply and the source throw; chains in progress are then lost.
    virtual void applyChains(ChainSource& source) const = 0;
};

} // namespace Nerix
