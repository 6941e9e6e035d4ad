#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/Md5Kernel.h"

namespace Nerix::HashFunctions::Md5Lanes {

namespace {

struct Vectors {
    using Vector = std::uint32_t __attribute__((vector_size(16)));

    static Vector readRow(const std::uint8_t* const* lane, std::size_t offset) {
        Vector row;
        __builtin_memcpy(&row, *lane + offset, sizeof row);
        return row;
    }

    static Vector interleaveLow(Vector a, Vector b) { return __builtin_shufflevector(a, b, 0, 4, 1, 5); }
    static Vector interleaveHigh(Vector a, Vector b) { return __builtin_shufflevector(a, b, 2, 6, 3, 7); }
    static Vector joinLow(Vector a, Vector b) { return __builtin_shufflevector(a, b, 0, 1, 4, 5); }
    static Vector joinHigh(Vector a, Vector b) { return __builtin_shufflevector(a, b, 2, 3, 6, 7); }
};

} // namespace

void compress128(States& states, const std::uint8_t* const* begins, std::size_t blocks, std::size_t used) {
    compress<Vectors>(states, begins, blocks, used);
}

} // namespace Nerix::HashFunctions::Md5Lanes
