#include "Executables/NerixHost/Scan.h"

#include "Common/Base/EscapedText.h"
#include "Common/Utils/TerminationSignals.h"
#include "Executables/NerixHost/DescriptorBuffer.h"
#include "Executables/NerixHost/ErrorMessage.h"
#include "Executables/NerixHost/Json.h"
#include "Executables/NerixHost/LogFile.h"
#include "Executables/NerixHost/LogPlace.h"
#include "Executables/NerixHost/TreeScan.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogFrame.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <ostream>
#include <system_error>

#include <unistd.h>

namespace Nerix {

namespace {

/// Where the records of a scan go: to a file, to standard output, or nowhere.
class LogOutput {
public:
    LogOutput(const ScanRequest& request, const TreeScan& scan)
        : m_hasDetails(request.hasDetails), m_output(STDOUT_FILENO), m_stream(nullptr) {
        if (request.logFile == "-") {
            m_stream.rdbuf(&m_output);
        } else if (!request.logFile.empty()) {
            m_file =
                std::make_unique<LogFile>(logPathOutside(canonicalPath(scan.path), request.logFile).string());
        }
        if (m_hasDetails) {
            stream() << ScanLogHeader{request.hashMethod, ::geteuid(), hashedRootOf(scan)}.text() << '\n';
        }
    }

    /// Returns the stream, which discards the records if they go nowhere.
    std::ostream& stream() { return m_file ? m_file->stream() : m_stream; }

    /// Call it after a successful scan. Throws if records were lost.
    void end(std::uint64_t entries) {
        if (m_hasDetails) {
            stream() << scanLogEnd(entries) << '\n';
        }
        if (m_file) {
            m_file->commit();
        } else if (m_stream.rdbuf() != nullptr && !m_stream.flush()) {
            throw std::ios_base::failure("standard output",
                                         std::error_code(m_output.error(), std::generic_category()));
        }
    }

private:
    const bool m_hasDetails;
    std::unique_ptr<LogFile> m_file;
    DescriptorBuffer m_output;
    std::ostream m_stream;
};

/// Prints what could not be read, or the value, and returns the exit status.
int printResult(const ScanRequest& request, const TreeScan& scan, const ScannedTree& tree) {
    std::ostream& output = request.logFile == "-" ? std::cerr : std::cout;
    if (request.isJson) {
        output << jsonOf(scan, tree) << std::endl;
    } else if (!tree.value.empty()) {
        output << tree.value << (request.paths.size() > 1 ? "  " + Common::escaped(scan.path) : "")
               << std::endl;
    }
    for (const std::string& sentence : tree.unreadables) {
        printError(sentence);
    }
    if (tree.value.empty()) {
        return errorStatus;
    }
    if (request.expected && *request.expected != tree.value) {
        printError("the value is " + tree.value + ", not " + *request.expected);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

int scanOne(const ScanRequest& request, const std::string& path) {
    const TreeScan scan{path, request.hashMethod, request.hashedRoot, request.keepsGoing, request.isQuiet};
    LogOutput log(request, scan);
    const ScannedTree tree = scanTree(scan, {&log.stream(), request.hasDetails});
    if (!tree.value.empty()) {
        log.end(tree.entries);
    }
    return printResult(request, scan, tree);
}

} // namespace

int scan(const ScanRequest& request) {
    const ScanSession session;
    int status = EXIT_SUCCESS;
    for (const std::string& path : request.paths) {
        status = std::max(status, scanOne(request, path));
        if (Common::Utils::terminationSignal() != 0) {
            break;
        }
    }
    return status;
}

} // namespace Nerix
