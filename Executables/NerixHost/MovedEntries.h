#pragma once

#include "Executables/NerixHost/Difference.h"

#include <vector>

namespace Nerix {

/// Finds the entries that were moved: a removed and an added directory with the same entries, or file or link
/// with the same content or target, each found only once on its side. Empty files, and directories without
/// anything else, are not looked for, because there are too many alike. Marks what it has found as explained
/// and returns a difference for each; also one for each entry below a moved directory of which another fact
/// changed. All entries must have facts.
std::vector<Difference> findMovedEntries(OneSidedEntries& removed, OneSidedEntries& added,
                                         const FactSet& ignored);

} // namespace Nerix
