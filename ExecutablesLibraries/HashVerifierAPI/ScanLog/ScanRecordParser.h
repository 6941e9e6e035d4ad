#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Nerix {

/// One record of a scan log; see ScanRecord.h.
struct ScanLogRecord {
    std::uint64_t value = 0;
    std::string path;
    std::string details; ///< as in the log, with the space before them; empty in a log without details
};

/// Joins a record from the lines or pieces into which it was split. Reads each byte once.
class ScanRecordParser {
public:
    enum class State {
        open,     ///< the record is not complete yet
        complete, ///< record() holds all of it
        damaged   ///< no scan writes such text
    };

    /// hasFacts: the details of the records contain facts.
    explicit ScanRecordParser(bool hasFacts = false) : m_hasFacts(hasFacts) {}

    /// Accepts details without parsing them from now on. Call it for a log that has been checked, or that
    /// this process wrote.
    void trustDetails() { m_areDetailsTrusted = true; }

    /// Returns true if the text begins with a value, a space and a double quote.
    static bool beginsRecord(std::string_view text);

    /// Begins a record with text, for which beginsRecord is true.
    State begin(std::string_view text);

    /// Adds text to the record, which must be open. A record with too long a path is damaged.
    State append(std::string_view text);

    const ScanLogRecord& record() const { return m_record; }

private:
    State end(std::string_view details);

    bool m_hasFacts;
    bool m_areDetailsTrusted = false;
    ScanLogRecord m_record;
    bool m_isAfterMark = false; ///< the text so far ends in the '&' of a pair
};

} // namespace Nerix
