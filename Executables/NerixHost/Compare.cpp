// Both logs are in the order of the walk, so one pass merges them. A record in only one log is an entry that
// was added or removed; two records of the same path with different values are a change. A directory comes
// after everything below it. It is printed if nothing below it was, or if its own details changed.

#include "Executables/NerixHost/Compare.h"

#include "Executables/NerixHost/EntryChange.h"
#include "Executables/NerixHost/Json.h"
#include "Executables/NerixHost/QuotedName.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/WalkOrder.h"

#include <cstdlib>
#include <iostream>

namespace Nerix {

namespace {

/// One of the two logs, and its current record.
struct Side {
    explicit Side(const std::string& file) : log(file) { advance(); }
    void advance() { hasRecord = log.next(record); }

    ScanLogReader log;
    ScanLogRecord record;
    bool hasRecord = false;
};

std::string lineOf(const EntryChange& change) {
    std::string line = change.what;
    line += ' ' + quotedName(change.path);
    std::string separator = ": ";
    for (const DetailChange& detail : change.details) {
        line += separator + detail.name + ' ' + detail.before + " -> " + detail.after;
        separator = ", ";
    }
    return change.hasDetails && change.details.empty() ? line + ": content, attributes or target" : line;
}

class Comparison {
public:
    explicit Comparison(const CompareRequest& request)
        : m_before(request.before), m_after(request.after), m_isJson(request.isJson) {
        if (m_before.log.root() != m_after.log.root()) {
            throw ScanLogError("the logs are of different trees, " + quotedName(m_before.log.root()) +
                               " and " + quotedName(m_after.log.root()) +
                               "; values depend on paths, so scan both trees under the same path, for "
                               "example by mounting each in turn on one directory (mount --bind)");
        }
    }

    /// Prints the differences while reading the logs, and returns the exit status.
    int printDifferences() {
        while (m_before.hasRecord || m_after.hasRecord) {
            const int order = nextInOrder();
            if (order == 0) {
                compareRecords();
                m_before.advance();
                m_after.advance();
            } else {
                Side& side = order < 0 ? m_before : m_after;
                printOneSided(side.record, order < 0 ? "removed" : "added");
                side.advance();
            }
        }
        std::cout << std::flush;
        return m_hasDifferences ? EXIT_FAILURE : EXIT_SUCCESS;
    }

private:
    /// Returns true if a difference below path has been printed. Entries below a directory immediately
    /// precede it in the log, so checking the last printed path is enough.
    bool isExplained(const std::string& path) const { return isBelow(m_lastPrintedPath, path); }

    /// Returns a negative number if the next record is only in the first log, a positive one if it is only in
    /// the second, 0 if it is in both.
    int nextInOrder() const {
        if (!m_before.hasRecord) {
            return 1;
        }
        if (!m_after.hasRecord) {
            return -1;
        }
        return compareInWalkOrder(m_before.record.path, m_after.record.path);
    }

    void compareRecords() {
        if (m_before.record.value == m_after.record.value) {
            return;
        }
        const bool hasReportedChangesBelow = isExplained(m_after.record.path);
        const EntryChange change = changeOf(m_before.record, m_after.record, hasReportedChangesBelow);
        if (!hasReportedChangesBelow || !change.details.empty()) {
            print(change);
        }
    }

    void printOneSided(const ScanLogRecord& record, const char* what) {
        if (!isExplained(record.path)) {
            print({what, record.path, false, {}});
        }
    }

    void print(const EntryChange& change) {
        std::cout << (m_isJson ? jsonOf(change) : lineOf(change)) << '\n';
        m_lastPrintedPath = change.path;
        m_hasDifferences = true;
    }

    Side m_before;
    Side m_after;
    const bool m_isJson;
    bool m_hasDifferences = false;
    std::string m_lastPrintedPath;
};

} // namespace

int compare(const CompareRequest& request) {
    return Comparison(request).printDifferences();
}

} // namespace Nerix
