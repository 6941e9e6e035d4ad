#include "Executables/NerixHost/Compare.h"

#include "Executables/NerixHost/DifferenceText.h"
#include "Executables/NerixHost/ErrorMessage.h"
#include "Executables/NerixHost/Json.h"
#include "Executables/NerixHost/QuotedName.h"
#include "Executables/NerixHost/TreeScan.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include <unistd.h>

namespace Nerix {

namespace {

bool isDirectory(const std::string& place) {
    std::error_code error; // ignored: if place cannot be examined, opening it as a log reports why
    return std::filesystem::is_directory(place, error);
}

/// The two logs. Those that are given are opened before a tree is scanned.
class Sides {
public:
    explicit Sides(const CompareRequest& request)
        : m_before(openIfLog(request.before)), m_after(openIfLog(request.after)) {
        const std::string method = methodFor(request);
        if (!m_before) {
            m_before.emplace(scan(request.before, method, request.isQuiet));
        }
        if (!m_after) {
            m_after.emplace(scan(request.after, method, request.isQuiet));
        }
    }

    ScanLogReader& before() { return *m_before; }
    ScanLogReader& after() { return *m_after; }

private:
    /// Returns nullopt for a directory.
    static std::optional<ScanLogReader> openIfLog(const std::string& place) {
        if (isDirectory(place)) {
            return std::nullopt;
        }
        return ScanLogReader(place);
    }

    ScanLogReader scan(const std::string& place, const std::string& method, bool isQuiet) {
        if (!m_session) {
            m_session = std::make_unique<ScanSession>();
        }
        TreeScan scan;
        scan.path = place;
        scan.hashMethod = method;
        scan.isQuiet = isQuiet;
        return scanToLog(scan);
    }

    /// Returns the method with which a tree is scanned, so that it can be compared with a log.
    std::string methodFor(const CompareRequest& request) const {
        const std::optional<ScanLogReader>& log = m_before ? m_before : m_after;
        if (!log || (m_before && m_after)) {
            return request.hashMethod;
        }
        if (!log->header()) {
            throw ScanLogError(
                quotedName(m_before ? request.before : request.after) +
                " has no details, or those of an older version, so it cannot be compared with a directory; "
                "record the tree with 'NerixHost scan --log FILE --details'");
        }
        return log->header()->method;
    }

    std::unique_ptr<ScanSession> m_session;
    std::optional<ScanLogReader> m_before;
    std::optional<ScanLogReader> m_after;
};

bool isColored(CompareRequest::Color color) {
    const char* const noColor = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    const bool isWanted = (noColor == nullptr || *noColor == '\0') && terminal != nullptr &&
                          std::string(terminal) != "dumb" && ::isatty(STDOUT_FILENO) == 1;
    return color == CompareRequest::Color::always || (color == CompareRequest::Color::automatic && isWanted);
}

void printResult(const ComparisonResult& result, const CompareRequest& request) {
    if (request.isSummary && request.isJson) {
        std::cout << jsonOf(result, request.rules) << '\n' << std::flush;
        return;
    }
    if (request.isSummary) {
        std::cout << summaryOf(result);
    } else {
        const bool hasColor = isColored(request.color);
        for (const Difference& difference : result.differences) {
            std::cout << (request.isJson ? jsonOf(difference) : lineOf(difference, hasColor)) << '\n';
        }
    }
    if (request.isJson) {
        std::cout << jsonOf(result, request.rules) << '\n' << std::flush;
    } else {
        std::cout << std::flush;
        std::cerr << totalsOf(result, request.rules) << std::endl;
    }
}

void warnOfOtherUser(const ScanLogReader& before, const ScanLogReader& after) {
    if (before.header() && after.header() && before.header()->user != after.header()->user) {
        printError("the trees were scanned by different users, " + std::to_string(before.header()->user) +
                   " and " + std::to_string(after.header()->user) +
                   ": attributes that only root can see may differ");
    }
}

} // namespace

int compare(const CompareRequest& request) {
    Sides sides(request);
    warnOfOtherUser(sides.before(), sides.after());
    const ComparisonResult result = compareTrees(sides.before(), sides.after(), request.rules);
    printResult(result, request);
    return result.differences.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace Nerix
