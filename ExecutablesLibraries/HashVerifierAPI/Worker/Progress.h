#pragma once

#include <cstdint>
#include <string>

/// The arithmetic of a run's progress. Work is counted in bytes, unsigned 64-bit.
namespace Nerix::Progress {

/// The work of an entry of that size: rounded up to whole blocks, the plain size when the block size is 0.
std::uint64_t workOf(std::uint64_t size, std::uint32_t blockSize);

/// Whether `done` should be published: it exceeds `reported` by more than 1 MiB, or has fallen below it (an
/// entry's step bytes can exceed its rounded size).
bool isWorthReporting(std::uint64_t done, std::uint64_t reported);

/// Percentage with two decimals, "0.00" to "99.99". total is an estimate, the space in use on the file
/// system: the work can exceed it (hard links, holes, sizes rounded up), hence the division by 1.4 and the
/// cap, and a root that is only part of the file system ends far below 100. "0.00" when reported is 0,
/// "99.99" when only total is 0.
std::string text(std::uint64_t reported, std::uint64_t total);

} // namespace Nerix::Progress
