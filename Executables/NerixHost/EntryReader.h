#pragma once

#include "Executables/NerixHost/PathPattern.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/RecordDetails.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogReader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Nerix {

/// Reads the entries of a scan log, except the excluded ones, with their paths below the root: "/" is the
/// root, "/a/b" the entry b of its directory a.
class EntryReader {
public:
    /// The arguments must outlive the object.
    EntryReader(ScanLogReader& log, const std::vector<PathPattern>& excluded)
        : m_log(log), m_excluded(excluded) {}

    /// Moves to the next entry. Throws what ScanLogReader::next throws.
    void advance();

    /// Returns false after the last entry.
    bool hasEntry() const { return m_hasEntry; }

    /// Returns the current entry, which must exist.
    const ScanLogRecord& entry() const { return m_entry; }

    /// Returns true if the log has entries below the current one, excluded or not.
    bool hasEntriesBelow() const;

    /// Returns the details of the current entry, or nullopt in a log without details. Throws ScanLogError if
    /// the log has changed since it was opened and they are damaged.
    std::optional<RecordDetails> details() const;

    /// Returns the number of entries read so far, without the excluded ones.
    std::uint64_t count() const { return m_count; }

private:
    ScanLogReader& m_log;
    const std::vector<PathPattern>& m_excluded;
    ScanLogRecord m_entry;
    std::string m_previousPath; ///< of the record before the current one
    bool m_hasEntry = false;
    std::uint64_t m_count = 0;
};

} // namespace Nerix
