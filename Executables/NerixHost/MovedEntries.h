#pragma once

#include "Executables/NerixHost/Difference.h"

#include <vector>

namespace Nerix {

/// Finds the entries that were moved: pairs of a removed and an added directory with the same entries, or of
/// files or links with the same content or target, if each is the only such entry on its side. Ignores empty
/// files, and directories that contain nothing else, because many are alike. Marks the entries found as
/// explained. Returns a difference for each pair, and one for each entry below a moved directory whose owner,
/// mode or other facts changed. All entries must have details.
std::vector<Difference> findMovedEntries(OneSidedEntries& removed, OneSidedEntries& added,
                                         const FactSet& ignored);

} // namespace Nerix
