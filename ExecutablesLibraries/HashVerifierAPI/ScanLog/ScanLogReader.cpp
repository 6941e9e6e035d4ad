// The first constructor reads the file before the first record is handed out. detectFormat determines if it
// is a log file or a system log; in a system log, findLastRun finds the thread that wrote the last scan and
// the line where that scan begins. check then reads all records once, so a log that is damaged, out of order
// or cut short is rejected before anything is printed. A record can span lines: nextOfFile and
// nextOfSystemLog join them until the parser returns State::complete.

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogReader.h"

#include "Common/Logging/LoggingClass.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/SystemLogLine.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/WalkOrder.h"

namespace Nerix {

using State = ScanRecordParser::State;

namespace {

/// Returns the scan record in a message, after the "file:line>" with which logging prefixes it, or an empty
/// text. Recognizes a record by its form, whatever the source file.
std::string_view recordIn(std::string_view message) {
    const std::size_t end = message.find('>');
    const std::string_view record = end == std::string_view::npos ? "" : message.substr(end + 1);
    return ScanRecordParser::beginsRecord(record) ? record : "";
}

} // namespace

ScanLogReader::ScanLogReader(const std::string& file) : m_lines(file) {
    detectFormat();
    check();
    m_parser.trustDetails();
    rewind();
}

ScanLogReader::ScanLogReader(std::string name, Common::File file)
    : m_lines(std::move(name), std::move(file)) {
    m_lines.next();
    parseHeader();
    m_root = m_header->root;
    m_parser.trustDetails();
}

void ScanLogReader::throwErrorInLine(const char* reason) const {
    m_lines.throwError("line " + std::to_string(m_lines.number()) + reason);
}

void ScanLogReader::rewind() {
    m_lines.rewind();
    m_lastLineNumber = 0;
    m_isEnded = false;
    if (m_header) {
        m_lines.next();
    }
}

bool ScanLogReader::next(ScanLogRecord& record) {
    if (!(m_isSystemLog ? nextOfSystemLog() : nextOfFile())) {
        return false;
    }
    record = m_parser.record();
    return true;
}

bool ScanLogReader::nextOfFile() {
    if (!m_lines.next()) {
        return false;
    }
    if (m_isEnded) {
        throwErrorInLine(" follows the end of the log");
    }
    if (m_header && m_lines.isTerminated() && parseScanLogEnd(m_lines.line())) {
        m_announcedCount = *parseScanLogEnd(m_lines.line());
        m_isEnded = true;
        return nextOfFile(); // which must find the end of the file
    }
    if (!ScanRecordParser::beginsRecord(m_lines.line())) {
        throwErrorInLine(" is not a scan record");
    }
    auto state = m_parser.begin(m_lines.line());
    while (state == State::open && m_lines.isTerminated() && m_lines.next()) { // the path has line feeds
        state = m_parser.append("\n");
        if (state == State::open) {
            state = m_parser.append(m_lines.line());
        }
    }
    if (state == State::damaged) {
        throwErrorInLine(" is damaged");
    }
    if (state == State::open || !m_lines.isTerminated()) {
        m_lines.throwError("is incomplete: its last record is not terminated");
    }
    return true;
}

bool ScanLogReader::nextOfSystemLog() {
    auto state = State::complete; // no record has begun
    bool isInRecord = false;
    std::size_t lastPieceSize = 0;
    while (!(isInRecord && state == State::complete) && nextLineOfRun()) {
        const SystemLogLine& line = *m_systemLogLine;
        if (isInRecord) {
            // A long record is cut into pieces. Older versions also cut it at its line feeds and dropped
            // these.
            state = lastPieceSize == Common::Logging::LoggingClass::maxMessageLength ? State::open
                                                                                     : m_parser.append("\n");
            state = state == State::open ? m_parser.append(line.text) : state;
            lastPieceSize = line.text.size();
        } else if (const std::string_view record = recordIn(line.text); !record.empty()) {
            isInRecord = true;
            state = m_parser.begin(record);
            lastPieceSize = line.text.size();
        }
        if (state == State::damaged) {
            throwErrorInLine(" holds a damaged record");
        }
    }
    if (isInRecord && state == State::open) {
        m_lines.throwError("is incomplete: its last record is not terminated");
    }
    return isInRecord;
}

bool ScanLogReader::nextLineOfRun() {
    while (m_lines.next()) {
        m_systemLogLine = SystemLogLine::parse(m_lines.line());
        if (!m_systemLogLine || m_systemLogLine->thread != m_run || m_lines.number() < m_runBegin) {
            continue;
        }
        // Programs log other messages before the first record, so a log that begins with one was rotated.
        if (m_lines.number() == 1 ||
            (m_lastLineNumber != 0 && m_systemLogLine->number != m_lastLineNumber + 1)) {
            m_lines.throwError("is incomplete: records are missing before line " +
                               std::to_string(m_lines.number()) +
                               "; the system log was probably rotated. Use scan --log to keep all records");
        }
        m_lastLineNumber = m_systemLogLine->number;
        return true;
    }
    return false;
}

void ScanLogReader::detectFormat() {
    while (!m_isSystemLog && m_lines.next()) {
        if (m_lines.number() == 1 && ScanLogHeader::isHeader(m_lines.line())) {
            parseHeader();
            return;
        }
        if (m_lines.number() == 1 && ScanRecordParser::beginsRecord(m_lines.line())) {
            rewind();
            return;
        }
        m_isSystemLog = SystemLogLine::parse(m_lines.line()).has_value();
    }
    if (!m_isSystemLog) {
        m_lines.throwError("is not a scan log: it does not begin with a header or a scan record, and "
                           "contains no system-log line");
    }
    findLastRun();
}

void ScanLogReader::parseHeader() {
    m_header = ScanLogHeader::parse(m_lines.line());
    if (!m_header) {
        m_lines.throwError("has a header that is damaged or of another version");
    }
    m_parser = ScanRecordParser(true);
    rewind();
}

void ScanLogReader::findLastRun() {
    rewind();
    while (m_lines.next()) {
        const std::optional<SystemLogLine> line = SystemLogLine::parse(m_lines.line());
        if (line && !recordIn(line->text).empty()) {
            m_run = line->thread;
        }
    }
    rewind();
    std::uint64_t lastNumber = 0;
    while (m_lines.next()) {
        const std::optional<SystemLogLine> line = SystemLogLine::parse(m_lines.line());
        if (!line || line->thread != m_run || recordIn(line->text).empty()) {
            continue;
        }
        if (m_runBegin == 0 || line->number <= lastNumber) { // a later process may get the same thread number
            m_runBegin = m_lines.number();
        }
        lastNumber = line->number;
    }
    rewind();
}

void ScanLogReader::check() {
    ScanLogRecord record;
    std::string first;
    while (next(record)) {
        if (first.empty()) {
            first = record.path;
        } else if (compareInWalkOrder(m_root, record.path) >= 0) {
            throwErrorInLine(" is out of order: not the log of a single scan");
        }
        const bool hasDetails = !record.details.empty();
        if (m_hasDetails.value_or(hasDetails) != hasDetails) {
            throwErrorInLine(hasDetails ? " has details, unlike the records before it"
                                        : " has no details, unlike the records before it");
        }
        m_hasDetails = hasDetails;
        ++m_count;
        std::swap(m_root, record.path);
    }
    if (first.empty()) {
        m_lines.throwError("contains no scan records");
    }
    if (m_header && (!m_isEnded || m_announcedCount != m_count || m_root != m_header->root)) {
        m_lines.throwError("is incomplete: the scan failed or was interrupted, or records were taken out");
    }
    // In walk order, the entries below the root directly precede it, so it is enough to check the first one.
    if (first != m_root && !isBelow(first, m_root)) {
        m_lines.throwError(
            "is incomplete: it does not end with the root of the tree; the scan failed or was interrupted");
    }
}

} // namespace Nerix
