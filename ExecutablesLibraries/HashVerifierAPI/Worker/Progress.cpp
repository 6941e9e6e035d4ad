#include "ExecutablesLibraries/HashVerifierAPI/Worker/Progress.h"

#include <charconv>

namespace Nerix::Progress {

std::uint64_t workOf(std::uint64_t size, std::uint32_t blockSize) {
    if (blockSize == 0) {
        return size;
    }
    const std::uint64_t wholeBlocks = size / blockSize + (size % blockSize == 0 ? 0 : 1);
    return wholeBlocks * blockSize;
}

bool isWorthReporting(std::uint64_t done, std::uint64_t reported) {
    constexpr std::uint64_t oneMebibyte = 0x100000;
    return done - reported > oneMebibyte; // unsigned: a negative difference is a huge one
}

std::string text(std::uint64_t reported, std::uint64_t total) {
    if (reported == 0) {
        return "0.00"; // also if the total is 0, when the division would have no result
    }
    const auto percent =
        static_cast<float>(static_cast<double>(reported) * 100.0 / static_cast<double>(total));
    auto scaled = static_cast<float>(static_cast<double>(percent) / 1.4);
    if (static_cast<double>(scaled) > 99.99) {
        scaled = 99.99F;
    }
    char digits[16]; // to_chars, because printf would use the decimal point of the process's locale
    auto* const end = std::to_chars(digits, digits + sizeof digits, scaled, std::chars_format::fixed, 2).ptr;
    return {digits, end};
}

} // namespace Nerix::Progress
