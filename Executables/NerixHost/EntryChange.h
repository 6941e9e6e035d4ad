#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogReader.h"

#include <string>
#include <vector>

namespace Nerix {

/// One attribute of an entry that differs between two logs with details.
struct FactChange {
    const char* name; ///< kind, owner, group, links, mode or size
    std::string before;
    std::string after;
};

struct EntryChange {
    const char* what; ///< changed, added or removed
    std::string path;
    bool hasDetails;               ///< both logs contain details
    std::vector<FactChange> facts; ///< those that differ
};

/// What differs between two records of the same entry. hasReportedChangesBelow: a change below this directory
/// has already been reported; then its size and link count, which follow from its entries, are ignored.
EntryChange changeOf(const ScanLogRecord& before, const ScanLogRecord& after, bool hasReportedChangesBelow);

} // namespace Nerix
