#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Nerix {

/// One record of a scan log; see ScanRecord.h.
struct ScanLogRecord {
    std::uint64_t value = 0;
    std::string path;
    std::string details; ///< as in the log, with the blank in front; empty in a log without details
};

/// Puts a record together from the lines or pieces that it was cut into. Each byte is looked at once.
class ScanRecordParser {
public:
    enum class State {
        open,     ///< more text belongs to the record
        complete, ///< record() holds all of it
        damaged   ///< no scan writes such text
    };

    /// hasFacts: the details of the records contain facts.
    explicit ScanRecordParser(bool hasFacts = false) : m_hasFacts(hasFacts) {}

    /// From now on takes details as they are, because those of the same log have been checked.
    void trustDetails() { m_areDetailsTrusted = true; }

    /// Returns true if the text begins with a value, a blank and a double quote.
    static bool beginsRecord(std::string_view text);

    /// Begins a record with text, for which beginsRecord is true.
    State begin(std::string_view text);

    /// Adds text to the record, which must be open. One that grows longer than any record is damaged.
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
