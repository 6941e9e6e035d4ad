#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogReader.h"

#include <string>
#include <vector>

namespace Nerix {

/// One fact of an entry that two logs with details tell differently.
struct FactChange {
    const char* name; ///< kind, owner, group, links, mode or size
    std::string before;
    std::string after;
};

struct EntryChange {
    const char* what; ///< changed, added or removed
    std::string path;
    bool hasDetails;               ///< both logs tell the facts
    std::vector<FactChange> facts; ///< those that differ
};

/// What differs between two records of the same entry. A directory's size and links follow from its entries
/// and are left out when belowExplains.
EntryChange changeOf(const ScanLogRecord& before, const ScanLogRecord& after, bool belowExplains);

} // namespace Nerix
