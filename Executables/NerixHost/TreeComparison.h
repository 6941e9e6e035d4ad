#pragma once

#include "Executables/NerixHost/Difference.h"
#include "Executables/NerixHost/EntryReader.h"

#include <vector>

namespace Nerix {

struct ComparisonRules {
    FactSet ignored;                   ///< facts that are not compared
    std::vector<PathPattern> excluded; ///< entries that are not compared
    bool listsAll = false; ///< also entries below directories that were added, removed or replaced
};

/// The result of a comparison. The differences are sorted by kind, then in the order of the walk.
struct ComparisonResult {
    std::vector<Difference> differences;
    std::uint64_t entries = 0; ///< compared, of the later tree
};

/// Returns the number of differences of that kind.
std::uint64_t countOf(const ComparisonResult& result, Difference::Kind kind);

/// Returns the bytes of all differences of that kind.
std::uint64_t bytesOf(const ComparisonResult& result, Difference::Kind kind);

/// Compares two logs. If they have a header, compares their details, and the roots may differ. Otherwise
/// compares values, which depend on paths, so the roots must be the same, and the details that logs of older
/// versions may have. The value of a directory that may contain excluded entries is not compared. Memory
/// grows only with the number of differing entries. Throws ScanLogError if the logs cannot be compared or one
/// of them can no longer be read.
ComparisonResult compareTrees(ScanLogReader& before, ScanLogReader& after, const ComparisonRules& rules);

} // namespace Nerix
