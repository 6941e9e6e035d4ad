#pragma once

#include <cstddef>
#include <cstdint>

namespace Nerix {

/// Supplies IHashFunction::applyChains with chains of steps that do not depend on each other: the value that
/// one step gives is the value with which the next step of the same chain begins. Each chain has a lane to
/// itself until it ends; then the lane takes another chain.
class ChainSource {
public:
    struct Step {
        std::uint64_t value = 0; ///< before the step; applyChains replaces it by the value after the step
        const char* data = nullptr;
        unsigned int length = 0; ///< bytes at data
    };

    /// Replaces the step that the lane has taken by its next one: the next of the chain, which keeps the
    /// value, or the first of another chain with the value with which that begins. The data must stay valid
    /// until the next call for the lane. Returns false if the lane has nothing to do now; it may be asked
    /// again. The first call for a lane, and those after false, have no step that was taken. What it throws
    /// leaves applyChains.
    virtual bool next(std::size_t lane, Step& step) = 0;

protected:
    ChainSource() = default;
    ~ChainSource() = default;
    ChainSource(const ChainSource&) = default;
    ChainSource& operator=(const ChainSource&) = default;
};

} // namespace Nerix
