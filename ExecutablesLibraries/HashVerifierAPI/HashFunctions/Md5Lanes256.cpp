#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/Md5Kernel.h"

namespace Nerix::HashFunctions::Md5Lanes {

namespace {

struct Vectors {
    using Vector = std::uint32_t __attribute__((vector_size(32)));

    static Vector readRow(const std::uint8_t* const* lane, std::size_t offset) {
        using Half = std::uint32_t __attribute__((vector_size(16)));
        Half low;
        Half high;
        __builtin_memcpy(&low, lane[0] + offset, sizeof low);
        __builtin_memcpy(&high, lane[4] + offset, sizeof high);
        return __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7);
    }

    // These work within each 128-bit half, for which the processor has single instructions.

    static Vector interleaveLow(Vector a, Vector b) {
        return __builtin_shufflevector(a, b, 0, 8, 1, 9, 4, 12, 5, 13);
    }
    static Vector interleaveHigh(Vector a, Vector b) {
        return __builtin_shufflevector(a, b, 2, 10, 3, 11, 6, 14, 7, 15);
    }
    static Vector joinLow(Vector a, Vector b) {
        return __builtin_shufflevector(a, b, 0, 1, 8, 9, 4, 5, 12, 13);
    }
    static Vector joinHigh(Vector a, Vector b) {
        return __builtin_shufflevector(a, b, 2, 3, 10, 11, 6, 7, 14, 15);
    }
};

} // namespace

void compress256(States& states, const std::uint8_t* const* begins, std::size_t blocks, std::size_t used) {
    compress<Vectors>(states, begins, blocks, used);
}

} // namespace Nerix::HashFunctions::Md5Lanes
