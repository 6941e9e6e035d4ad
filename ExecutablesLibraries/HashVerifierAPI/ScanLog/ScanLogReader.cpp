#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogReader.h"

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/SystemLogLine.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/WalkOrder.h"

#include <cerrno>
#include <charconv>
#include <map>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace Nerix {

namespace {

constexpr std::size_t valueLength = 16;
constexpr std::size_t pathBegin = valueLength + 2; ///< behind the value, a blank and the quote
constexpr std::size_t longestRecord = 16384;       ///< more than twice the longest path, and details
constexpr std::size_t pieceLength = 768;           ///< of a long record in the system log

std::string messageOf(int error) {
    return std::generic_category().message(error);
}

bool beginsRecord(std::string_view text) {
    std::uint64_t value = 0;
    return text.size() >= pathBegin && text.compare(valueLength, 2, " \"") == 0 &&
           std::from_chars(text.data(), text.data() + valueLength, value, 16).ptr ==
               text.data() + valueLength;
}

/// Takes the path out of its quotes. Gives what stands behind the closing one; nothing when that is missing.
std::optional<std::string_view> unquote(std::string_view text, std::string& path) {
    path.clear();
    for (;;) {
        const std::size_t quote = text.find('"');
        const std::size_t mark = text.substr(0, quote).find('&');
        if (mark == std::string_view::npos) {
            path.append(text, 0, quote);
            return quote == std::string_view::npos ? std::nullopt : std::optional(text.substr(quote + 1));
        }
        path.append(text, 0, mark);
        if (mark + 1 == text.size()) {
            return std::nullopt;
        }
        path += text[mark + 1];
        text.remove_prefix(mark + 2);
    }
}

/// Reads a record that begins as one. False when it goes on in the next line.
bool parse(std::string_view text, ScanLogRecord& record) {
    const std::optional<std::string_view> rest = unquote(text.substr(pathBegin), record.path);
    if (!rest || (!rest->empty() && rest->front() != ' ')) {
        return false;
    }
    std::from_chars(text.data(), text.data() + valueLength, record.value, 16);
    record.details = rest->empty() ? *rest : rest->substr(1);
    return true;
}

/// The record in a line of the worker: behind the source file and its line.
std::string_view recordIn(std::string_view text) {
    constexpr std::string_view source = "HashWorker.cpp:";
    const std::size_t end = text.find('>');
    if (text.compare(0, source.size(), source) != 0 || end == std::string_view::npos ||
        !beginsRecord(text.substr(end + 1))) {
        return {};
    }
    return text.substr(end + 1);
}

} // namespace

ScanLogReader::ScanLogReader(const std::string& file) : m_file(file) {
    open();
    detectFormat();
    check();
    rewind();
}

void ScanLogReader::refuse(const std::string& reason) const {
    throw ScanLogError(m_file + ": " + reason);
}

void ScanLogReader::open() {
    m_stream.reset(std::fopen(m_file.c_str(), "re"));
    struct stat status {};
    if (!m_stream || ::fstat(::fileno(m_stream.get()), &status) != 0) {
        refuse(messageOf(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        refuse(messageOf(EISDIR));
    }
    if (S_ISREG(status.st_mode)) {
        return;
    }
    // The log is read more than once.
    std::unique_ptr<std::FILE, Closer> copy(std::tmpfile());
    char buffer[65536];
    for (std::size_t size = sizeof buffer; copy && size == sizeof buffer;) {
        size = std::fread(buffer, 1, sizeof buffer, m_stream.get());
        if (std::fwrite(buffer, 1, size, copy.get()) != size) {
            break;
        }
    }
    if (!copy || std::ferror(m_stream.get()) != 0 || std::fflush(copy.get()) != 0) {
        refuse("cannot be copied: " + messageOf(errno));
    }
    m_stream = std::move(copy);
    rewind();
}

void ScanLogReader::rewind() {
    std::rewind(m_stream.get());
    m_lineNumber = 0;
    m_recordNumber = 0;
}

bool ScanLogReader::readLine() {
    char* buffer = m_buffer.release();
    errno = 0;
    const ssize_t length = ::getdelim(&buffer, &m_bufferSize, '\n', m_stream.get());
    m_buffer.reset(buffer);
    if (length < 0) {
        if (std::ferror(m_stream.get()) != 0 || errno == ENOMEM) {
            refuse("cannot be read: " + messageOf(errno));
        }
        return false;
    }
    const auto size = static_cast<std::size_t>(length);
    m_line = std::string_view(buffer, buffer[size - 1] == '\n' ? size - 1 : size);
    ++m_lineNumber;
    return true;
}

bool ScanLogReader::next(ScanLogRecord& record) {
    return m_isSystemLog ? nextOfSystemLog(record) : nextOfFile(record);
}

bool ScanLogReader::nextOfFile(ScanLogRecord& record) {
    if (!readLine()) {
        return false;
    }
    if (!beginsRecord(m_line)) {
        refuse("line " + std::to_string(m_lineNumber) + " is no record of a scan");
    }
    if (parse(m_line, record)) {
        return true;
    }
    std::string text(m_line); // the path has line feeds
    while (readLine() && text.size() < longestRecord) {
        text.append(1, '\n').append(m_line);
        if (parse(text, record)) {
            return true;
        }
    }
    refuse("is incomplete: the record in front of line " + std::to_string(m_lineNumber + 1) + " has no end");
}

bool ScanLogReader::nextOfSystemLog(ScanLogRecord& record) {
    std::string text;          // of a record whose end is still to come
    std::size_t lastPiece = 0; // its bytes
    while (readLine()) {
        const std::optional<SystemLogLine> line = SystemLogLine::parse(m_line);
        if (!line || line->thread != m_run || m_lineNumber < m_runBegin) {
            continue;
        }
        if (m_lineNumber == 1 || (m_recordNumber != 0 && line->number != m_recordNumber + 1)) {
            refuse(
                "is incomplete: records in front of line " + std::to_string(m_lineNumber) +
                " are missing, as in a system log that was rotated; keep the records of a scan with --log");
        }
        m_recordNumber = line->number;
        if (!text.empty()) {
            // A long record is cut at its line feeds, which are left out, and then into pieces.
            text.append(lastPiece == pieceLength ? "" : "\n").append(line->text);
        } else {
            text = recordIn(line->text);
        }
        lastPiece = line->text.size();
        if (!text.empty() && parse(text, record)) {
            return true;
        }
    }
    if (!text.empty()) {
        refuse("is incomplete: its last record has no end");
    }
    return false;
}

void ScanLogReader::detectFormat() {
    while (!m_isSystemLog && readLine()) {
        if (m_lineNumber == 1 && beginsRecord(m_line)) {
            rewind();
            return;
        }
        m_isSystemLog = SystemLogLine::parse(m_line).has_value();
    }
    if (!m_isSystemLog) {
        refuse("is no scan log: neither a record of a scan nor a line of the system log begins it");
    }
    findLastRun();
}

void ScanLogReader::findLastRun() {
    struct Run {
        std::uint64_t beginLine = 0;
        std::uint64_t number = 0; // of its last record
    };
    std::map<std::string, Run, std::less<>> runs; // by thread: those of several processes may alternate
    rewind();
    while (readLine()) {
        const std::optional<SystemLogLine> line = SystemLogLine::parse(m_line);
        if (!line || recordIn(line->text).empty()) {
            continue;
        }
        m_run = line->thread;
        Run& run = runs[m_run];
        if (run.beginLine == 0 ||
            line->number <= run.number) { // a later process may get the same thread number
            run.beginLine = m_lineNumber;
        }
        run.number = line->number;
        m_runBegin = run.beginLine;
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
            refuse("line " + std::to_string(m_lineNumber) +
                   " is not where a scan of one tree would have put it");
        }
        std::swap(m_root, record.path);
    }
    if (first.empty()) {
        refuse("has no record of a scan");
    }
    // In this order everything from the first entry below the root to the root itself is below the root.
    if (first != m_root && !isBelow(first, m_root)) {
        refuse("is incomplete: its last record is not that of the whole tree; the scan failed or was ended");
    }
}

} // namespace Nerix
