#pragma once

#include "Executables/NerixHost/FactChange.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Nerix {

/// A difference between two trees, as one line of output. Paths are those of EntryReader.
struct Difference {
    enum class Kind { changed, moved, removed, added };

    Kind kind;
    std::string path;
    std::string newPath;           ///< of a moved entry
    std::vector<FactChange> facts; ///< of a changed or moved entry; empty if only the values differ
    std::uint64_t below = 0;       ///< entries below that are part of this difference
    std::uint64_t bytes = 0;       ///< size of the files that were removed or added
};

/// An entry that only one of the trees has.
struct OneSidedEntry {
    std::string path;
    std::optional<RecordDetails> details;
    bool isExplained = false; ///< another difference includes it
};

/// The entries that only one of the trees has, in the order of the walk: a directory comes directly after
/// everything below it.
using OneSidedEntries = std::vector<OneSidedEntry>;

} // namespace Nerix
