#include "ExecutablesLibraries/HashVerifierAPI/Worker/Progress.h"

#include <gtest/gtest.h>

#include <limits>

namespace Nerix::Tests {
namespace {

TEST(Progress, WorkIsRoundedUpToBlocks) {
    const std::uint64_t eightGigabytes = 8ULL << 30U;
    const struct {
        std::uint64_t size;
        std::uint32_t blockSize;
        std::uint64_t work;
    } cases[] = {{0, 4096, 0},       {1, 4096, 4096}, {4096, 4096, 4096},
                 {4097, 4096, 8192}, {4097, 0, 4097}, {eightGigabytes + 1, 4096, eightGigabytes + 4096}};
    for (const auto& expected : cases) {
        EXPECT_EQ(Progress::workOf(expected.size, expected.blockSize), expected.work) << expected.size;
    }
}

TEST(Progress, TextHasTwoDecimalsAndStaysBelowAHundred) {
    const std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    const struct {
        std::uint64_t reported;
        std::uint64_t total;
        const char* text;
    } cases[] = {{0, 1000, "0.00"},    {0, 0, "0.00"},        {1, 0, "99.99"},       {1000, 1000, "71.43"},
                 {590, 1000, "42.14"}, {1399, 1000, "99.93"}, {1400, 1000, "99.99"}, {most, 1, "99.99"}};
    for (const auto& expected : cases) {
        EXPECT_EQ(Progress::text(expected.reported, expected.total), expected.text)
            << expected.reported << " of " << expected.total;
    }
}

} // namespace
} // namespace Nerix::Tests
