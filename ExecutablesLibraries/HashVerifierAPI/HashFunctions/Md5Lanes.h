#pragma once

#include <cstddef>
#include <cstdint>

/// MD5's compression function over several messages at once: each message has a lane of the processor's
/// vectors. A digest of one message is a chain of dependent operations that leaves most of a core idle;
/// independent messages fill it.
namespace Nerix::HashFunctions::Md5Lanes {

constexpr std::size_t blockSize = 64; ///< bytes that one application of the compression function takes
constexpr std::size_t maxCount = 16;  ///< lanes of the widest implementation

/// The four state words of every lane, word by word, so that a vector holds the same word of neighbouring
/// lanes.
struct States {
    alignas(64) std::uint32_t words[4][maxCount];
};

/// Applies the compression function `blocks` times to each of the lanes 0 to used - 1, and possibly to those
/// after them. begins[i] points to the contiguous blocks of lane i, at any alignment. Each of the
/// Implementation::count lanes needs blocks: give an idle lane those of a busy one and ignore its state.
using Compress = void (*)(States& states, const std::uint8_t* const* begins, std::size_t blocks,
                          std::size_t used);

struct Implementation {
    std::size_t count; ///< number of lanes; 0 if there is no implementation
    Compress compress; ///< null if there is none
};

/// Returns the implementation for this processor: 16 lanes with AVX2, 8 with SSE2 or NEON, none on other or
/// big-endian machines.
Implementation implementation();

/// The implementations. Call one only if the processor has its vectors.
void compress128(States& states, const std::uint8_t* const* begins, std::size_t blocks, std::size_t used);
void compress256(States& states, const std::uint8_t* const* begins, std::size_t blocks, std::size_t used);

} // namespace Nerix::HashFunctions::Md5Lanes
