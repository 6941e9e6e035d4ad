#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace Nerix {
struct RunOptions;
}

/// The functions with which a program runs a verification. All use the process's single HashWorker. Call them
/// from one thread, except getProgress, getEntries and getFileBytes, which are thread-safe.
///
/// hashMethod is one of HashFunctions::methods(). The crypto set-up (SINGLETON_OPENSSL_INITIALIZER) must be
/// registered for as long as a verification runs. Without RunOptions the product must be initialized: if it
/// is not, starting throws ProductUninitializedException and publishes "ERROR".
namespace Nerix::HashVerifierAPI {

/// Starts hashing the tree at path and returns while it runs. A relative path starts at the current
/// directory; symbolic links in the path are followed. Throws boost::filesystem::filesystem_error if the path
/// does not exist or cannot be resolved, GenericException if it cannot be examined, and what
/// HashWorker::start throws.
void startVerifyPath(const std::string& path, const std::string& hashMethod);

/// Calls startVerifyPath("/", "md5").
void startVerifyFileSystem();

/// Hashes the tree at path and returns its value, 16 lower-case hexadecimal digits, or "ERROR" if the scan
/// failed, hashMethod is unknown, the settings store failed during the run, or a signal ends the process
/// (TerminationSignals.h). Throws what startVerifyPath throws.
std::string nerixVerifyPath(const std::string& path, const std::string& hashMethod);

/// Does the same with options; see RunOptions.h.
std::string nerixVerifyPath(const std::string& path, const std::string& hashMethod,
                            const RunOptions& options);

/// Calls nerixVerifyPath("/", "md5").
std::string nerixVerifyFileSystem();

/// Returns the last reported percentage of the current or last verification, with two decimals; always below
/// 100.
std::string getProgress();

/// Returns the number of entries that the running or last verification has reported.
std::uint64_t getEntries();

/// Returns the size in bytes of the regular files reported so far, plus approximately what has been hashed of
/// the entry in progress.
std::uint64_t getFileBytes();

/// Returns the value of the last verification, or "ERROR". Call only after HashWorker::wait; during a run
/// this is a data race. Asserts that some run has finished.
std::string getResult();

/// Returns the failure with which the last verification ended, or null if it succeeded. The restrictions of
/// getResult apply.
std::exception_ptr getFailure();

/// Returns the first read error that ended a file's content early, or null if there was none or the run had
/// RunOptions::onUnreadable. The value of such a verification covers only what could be read, and the system
/// log has a warning for each such file. The restrictions of getResult apply.
std::exception_ptr getReadFailure();

} // namespace Nerix::HashVerifierAPI
