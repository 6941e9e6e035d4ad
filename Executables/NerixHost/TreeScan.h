#pragma once

#include "Executables/ProgramSession/ProgramSession.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogReader.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogStream.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace Nerix {

/// Prepares the process for scans: keeps the settings in memory and catches termination signals, which then
/// end a scan early. Create only one per process, on the main thread, before anything uses the settings store.
class ScanSession {
public:
    /// Throws what ProgramSession::loadProductAndParameters throws.
    ScanSession();

private:
    std::unique_ptr<ProgramSession> m_session;
};

/// A scan of one tree.
struct TreeScan {
    std::string path;
    std::string hashMethod;
    std::string hashedRoot;  ///< see RunOptions; empty for the tree's own path
    bool keepsGoing = false; ///< after an entry that cannot be read
    bool isQuiet = false;    ///< progress is not shown
};

/// The result of a scan.
struct ScannedTree {
    std::string root;                     ///< path under which it was hashed; empty if it does not exist
    std::string value;                    ///< empty if the tree could not be read completely
    std::vector<std::string> unreadables; ///< a sentence for each thing that could not be read
    std::uint64_t entries = 0;
    std::uint64_t bytes = 0; ///< of the regular files
    double seconds = 0;
};

/// Scans a tree and shows progress on standard error. Requires a ScanSession. Does not throw if the tree
/// cannot be read.
ScannedTree scanTree(const TreeScan& scan, const ScanLogStream& log);

/// Scans a tree into a log with details in an unnamed temporary file, and returns a reader of it. Throws
/// std::runtime_error with a sentence for the user if the tree cannot be read completely, or the log cannot
/// be written.
ScanLogReader scanToLog(const TreeScan& scan);

/// Returns the absolute path without links. Throws std::runtime_error with a sentence for the user if it
/// cannot be resolved.
std::filesystem::path canonicalPath(const std::string& path);

/// Returns the root under which a scan hashes the tree. Throws std::runtime_error if the path does not exist.
std::string hashedRootOf(const TreeScan& scan);

} // namespace Nerix
