#pragma once

#include <cstddef>
#include <cstdint>

namespace Nerix {

/// Supplies IHashFunction::applyChains with independent chains of steps. Within a chain, each step begins
/// with the value of the one before. A lane takes one chain at a time.
class ChainSource {
public:
    struct Step {
        std::uint64_t value = 0; ///< before the step; applyChains replaces it with the value after the step
        const char* data = nullptr;
        unsigned int length = 0; ///< bytes at data
    };

    /// Called when the lane has finished `step`, whose value is then the result, or has no step yet (at the
    /// first call, and after false). Stores the lane's next step in `step`: of the same chain or the first
    /// one of another chain, with the value with which it begins. The data must stay valid until the next
    /// call for the lane. Returns false if there is nothing for the lane now; applyChains may call again.
    /// Exceptions propagate out of applyChains.
    virtual bool next(std::size_t lane, Step& step) = 0;

protected:
    ChainSource() = default;
    ~ChainSource() = default;
    ChainSource(const ChainSource&) = default;
    ChainSource& operator=(const ChainSource&) = default;
};

} // namespace Nerix
