#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/LogLines.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogFrame.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanRecordParser.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/SystemLogLine.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Nerix {

/// Reads a scan log record by record, in the order of the walk. The log is a file, with or without details
/// and facts, or a host's system log; from a system log, it reads the last run and reassembles long records.
/// The log is not trusted: memory use does not grow with it, the time is linear in its length, and a record
/// that no scan could have written is an error. One thread at a time may use a reader.
class ScanLogReader {
public:
    /// Validates the whole log, then rewinds to its beginning. Throws ScanLogError if the log cannot be read,
    /// has no record, is damaged, or is incomplete: its last record is not the root of all others, its last
    /// line has no line feed, the number of records differs from that in the last line of a log with facts,
    /// or the beginning of the run was rotated out of a system log. Does not detect records that were removed
    /// from a file without facts, unless the last one is missing; compare then reports their entries as
    /// differing.
    explicit ScanLogReader(const std::string& file);

    /// Reads a log with facts that this process has written to an unnamed file. Checks only its header.
    ScanLogReader(std::string name, Common::File file);

    /// Returns the path of the last record, which is that of the whole tree.
    const std::string& root() const { return m_root; }

    /// Returns the header of a log with facts, or nullopt if the log has none.
    const std::optional<ScanLogHeader>& header() const { return m_header; }

    /// Returns the number of records that the constructor has checked.
    std::uint64_t count() const { return m_count; }

    /// Reads the next record. Returns false at the end. Throws ScanLogError if the log can no longer be read.
    /// If another process has changed the log, the details may be damaged.
    bool next(ScanLogRecord& record);

private:
    [[noreturn]] void throwErrorInLine(const char* reason) const;
    void rewind();
    bool nextOfFile();
    bool nextOfSystemLog();
    bool nextLineOfRun();
    void detectFormat();
    void parseHeader();
    void findLastRun();
    void check();

    LogLines m_lines;
    std::optional<ScanLogHeader> m_header;
    std::uint64_t m_count = 0;
    std::uint64_t m_announcedCount = 0; ///< in the last line of a log with facts
    bool m_isEnded = false;             ///< the last line of a log with facts has been read
    ScanRecordParser m_parser;
    bool m_isSystemLog = false;
    std::optional<SystemLogLine> m_systemLogLine; ///< the current line, in a system log
    std::string m_run;                  ///< the thread field of the last run's lines, in a system log
    std::uint64_t m_runBegin = 0;       ///< the line of its first record
    std::uint64_t m_lastLineNumber = 0; ///< of the run's line that was read last; 0 if none was
    std::optional<bool> m_hasDetails;   ///< whether the records have details; nullopt before the first
    std::string m_root;
};

} // namespace Nerix
