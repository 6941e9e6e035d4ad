#pragma once

#include <cstdint>
#include <string>

/// The arithmetic of a run's progress. Work is counted in bytes, unsigned 64-bit.
namespace Nerix::Progress {

/// Returns the work of an entry of that size: the size rounded up to whole blocks, or the size itself if the
/// block size is 0. Sizes have 64 bits, so a file of more than 4 GiB counts whole.
std::uint64_t workOf(std::uint64_t size, std::uint32_t blockSize);

/// Returns true if `done` should be published: it exceeds `reported` by more than 1 MiB, or has fallen below
/// it (the bytes counted for an entry's steps can exceed its rounded size).
bool isWorthReporting(std::uint64_t done, std::uint64_t reported);

/// Returns the percentage with two decimals, "0.00" to "99.99". total is an estimate, the space in use on the
/// file system: the work can exceed it (hard links, holes, sizes rounded up), hence the division by 1.4 and
/// the cap, and a root that is only part of the file system ends far below 100. Returns "0.00" if reported is
/// 0, "99.99" if only total is 0.
std::string text(std::uint64_t reported, std::uint64_t total);

} // namespace Nerix::Progress
