#include "Executables/NerixHost/EntryReader.h"

#include "Executables/NerixHost/QuotedName.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/WalkOrder.h"

namespace Nerix {

namespace {

/// Removes the root from the front of path, which is the root or below it.
void makeRelative(std::string& path, const std::string& root) {
    if (root != "/") {
        path.erase(0, root.size());
    }
    if (path.empty()) {
        path = "/";
    }
}

} // namespace

void EntryReader::advance() {
    do {
        m_previousPath.swap(m_entry.path);
        m_hasEntry = m_log.next(m_entry);
        if (m_hasEntry) {
            makeRelative(m_entry.path, m_log.root());
        }
    } while (m_hasEntry && isExcluded(m_entry.path, m_excluded));
    m_count += m_hasEntry ? 1 : 0;
}

bool EntryReader::hasEntriesBelow() const {
    return isBelow(m_previousPath, m_entry.path); // a directory comes directly after what is below it
}

std::optional<RecordDetails> EntryReader::details() const {
    if (m_entry.details.empty()) {
        return std::nullopt;
    }
    std::optional<RecordDetails> details = parseRecordDetails(m_entry.details, m_log.header().has_value());
    if (!details) {
        throw ScanLogError("the log of " + quotedName(m_log.root()) + " changed while it was read");
    }
    return details;
}

} // namespace Nerix
