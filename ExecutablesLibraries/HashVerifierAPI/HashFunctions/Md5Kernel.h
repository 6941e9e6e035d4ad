#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/Md5Lanes.h"

// The compression function of RFC 1321 over two vectors of lanes, side by side: while one waits for the
// result of an operation, the processor works on the other. The time of a single vector is the sum of the
// operations that wait for each other. The file that includes this header defines the vectors, and may be
// compiled for instructions that the rest of the program must not use. So everything here has internal
// linkage, and this file must not include anything that defines inline functions.

#if defined(__GNUC__) && !defined(__clang__)
// The order of the additions suits the processor; GCC would change it.
#pragma GCC optimize("no-tree-reassoc")
#endif

namespace Nerix::HashFunctions::Md5Lanes {

namespace { // NOLINT(google-build-namespaces,cert-dcl59-cpp): see above

inline constexpr std::uint32_t sines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};
inline constexpr unsigned int shifts[4][4] = {
    {7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
inline constexpr std::size_t wordFactors[4] = {1, 5, 3, 7};
inline constexpr std::size_t wordOffsets[4] = {0, 1, 5, 0};

/// Returns sum plus round `round`'s function (F, G, H or I in RFC 1321) of b, c and d. b is the result of the
/// previous operation, so it is used as late as possible: the rest can be computed before it is known.
template <std::size_t round, class Vector>
[[gnu::always_inline]] inline Vector addMixed(Vector sum, Vector b, Vector c, Vector d) {
    if constexpr (round == 0) {
        return sum + (d ^ (b & (c ^ d)));
    } else if constexpr (round == 1) {
        return (sum + (c & ~d)) + (b & d); // + instead of |, because no bit is set in both
    } else if constexpr (round == 2) {
        return sum + ((c ^ d) ^ b);
    } else {
        return sum + (c ^ (b | ~d));
    }
}

/// Applies operation `number` of the 64, and all after it, to the vectors, alternating between the sides.
template <std::size_t number, std::size_t sides, class Vector>
[[gnu::always_inline]] inline void operate(Vector (&states)[sides][4], const Vector (&words)[sides][16],
                                           const std::uint32_t* constants) {
    if constexpr (number < 64) {
        constexpr std::size_t round = number / 16;
        constexpr std::size_t word = (wordFactors[round] * number + wordOffsets[round]) % 16;
        constexpr unsigned int shift = shifts[round][number % 4];
        for (std::size_t side = 0; side != sides; ++side) {
            Vector(&state)[4] = states[side];
            Vector& a = state[(64 - number) % 4];
            const Vector b = state[(65 - number) % 4];
            const Vector sum = addMixed<round>(a + (words[side][word] + constants[number]), b,
                                               state[(66 - number) % 4], state[(67 - number) % 4]);
            a = b + ((sum << shift) | (sum >> (32 - shift)));
        }
        operate<number + 1>(states, words, constants);
    }
}

/// Reads one block of each lane and transposes it: words[i] has word i of every lane.
template <class Vectors>
[[gnu::always_inline]] inline void readBlock(typename Vectors::Vector (&words)[16],
                                             const std::uint8_t* const* lanes, std::size_t offset) {
    using Vector = typename Vectors::Vector;
    for (std::size_t first = 0; first != 16; first += 4) {
        // Each row has four words of one lane (with eight lanes, of lane i and lane i + 4).
        Vector rows[4];
        for (std::size_t row = 0; row != 4; ++row) {
            rows[row] = Vectors::readRow(lanes + row, offset + first * sizeof(std::uint32_t));
        }
        const Vector low01 = Vectors::interleaveLow(rows[0], rows[1]);
        const Vector low23 = Vectors::interleaveLow(rows[2], rows[3]);
        const Vector high01 = Vectors::interleaveHigh(rows[0], rows[1]);
        const Vector high23 = Vectors::interleaveHigh(rows[2], rows[3]);
        words[first] = Vectors::joinLow(low01, low23);
        words[first + 1] = Vectors::joinHigh(low01, low23);
        words[first + 2] = Vectors::joinLow(high01, high23);
        words[first + 3] = Vectors::joinHigh(high01, high23);
    }
}

/// Vectors: the type Vector, of 4 or 8 words, and the functions that readBlock calls. sides: the number of
/// vectors of lanes that are computed.
template <class Vectors, std::size_t sides>
[[gnu::always_inline]] inline void compressSides(States& states, const std::uint8_t* const* begins,
                                                 std::size_t blocks) {
    using Vector = typename Vectors::Vector;
    constexpr std::size_t lanes = sizeof(Vector) / sizeof(std::uint32_t);
    // Hides the constants from the compiler, which would otherwise move each through a general register
    // instead of reading it from memory.
    const std::uint32_t* constants = sines;
    asm("" : "+r"(constants));
    Vector sums[sides][4];
    for (std::size_t side = 0; side != sides; ++side) {
        for (std::size_t word = 0; word != 4; ++word) {
            __builtin_memcpy(&sums[side][word], &states.words[word][side * lanes], sizeof(Vector));
        }
    }
    for (std::size_t block = 0; block != blocks; ++block) {
        Vector words[sides][16];
        Vector next[sides][4];
        for (std::size_t side = 0; side != sides; ++side) {
            readBlock<Vectors>(words[side], begins + side * lanes, block * blockSize);
            for (std::size_t word = 0; word != 4; ++word) {
                next[side][word] = sums[side][word];
            }
        }
        operate<0>(next, words, constants);
        for (std::size_t side = 0; side != sides; ++side) {
            for (std::size_t word = 0; word != 4; ++word) {
                sums[side][word] += next[side][word];
            }
        }
    }
    for (std::size_t side = 0; side != sides; ++side) {
        for (std::size_t word = 0; word != 4; ++word) {
            __builtin_memcpy(&states.words[word][side * lanes], &sums[side][word], sizeof(Vector));
        }
    }
}

template <class Vectors>
[[gnu::always_inline]] inline void compress(States& states, const std::uint8_t* const* begins,
                                            std::size_t blocks, std::size_t used) {
    if (used * sizeof(std::uint32_t) <= sizeof(typename Vectors::Vector)) {
        compressSides<Vectors, 1>(states, begins, blocks);
    } else {
        compressSides<Vectors, 2>(states, begins, blocks);
    }
}

} // namespace

} // namespace Nerix::HashFunctions::Md5Lanes
