#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogReader.h"

#include <string>
#include <vector>

namespace Nerix {

/// A detail of an entry that differs between two logs.
struct DetailChange {
    const char* name; ///< kind, owner, group, links, mode or size
    std::string before;
    std::string after;
};

struct EntryChange {
    const char* what; ///< changed, added or removed
    std::string path;
    bool hasDetails;                   ///< both logs have details
    std::vector<DetailChange> details; ///< those that differ
};

/// Returns the difference between two records of an entry. hasReportedChangesBelow: a change below this
/// directory has been reported; its size and link count, which depend on its entries, are then ignored.
EntryChange changeOf(const ScanLogRecord& before, const ScanLogRecord& after, bool hasReportedChangesBelow);

} // namespace Nerix
