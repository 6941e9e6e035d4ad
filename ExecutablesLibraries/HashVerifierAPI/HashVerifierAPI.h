#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace Nerix {
struct RunOptions;
}

/// How a program asks for a verification. All functions use the process's single HashWorker. Call them from
/// one thread, except getProgress, getEntries and getFileBytes, which are thread-safe.
///
/// hashMethod is one of HashFunctions::methods(). The crypto set-up (SINGLETON_OPENSSL_INITIALIZER) must be
/// registered for as long as a verification runs, and the product must be initialised; otherwise starting
/// throws ProductUninitializedException and publishes "ERROR" as the result.
namespace Nerix::HashVerifierAPI {

/// Starts hashing the tree at path and returns while it runs. A relative path is taken from the current
/// directory; a path that is a symbolic link stands for what it leads to. Throws
/// boost::filesystem::filesystem_error when the path does not exist or cannot be resolved, GenericException
/// when it cannot be examined, and what HashWorker::start throws.
void startVerifyPath(const std::string& path, const std::string& hashMethod);

/// startVerifyPath("/", "md5").
void startVerifyFileSystem();

/// Hashes the tree at path and returns its value, 16 lower-case hexadecimal digits, or "ERROR" when the scan
/// failed, hashMethod is unknown, the settings store refused during the run, or a signal ends the process
/// (TerminationSignals.h). Throws what startVerifyPath throws.
std::string nerixVerifyPath(const std::string& path, const std::string& hashMethod);

/// Does the same with options; see RunOptions.h.
std::string nerixVerifyPath(const std::string& path, const std::string& hashMethod,
                            const RunOptions& options);

/// nerixVerifyPath("/", "md5").
std::string nerixVerifyFileSystem();

/// Last reported percentage of the current or last verification, with two decimals; always below 100.
std::string getProgress();

/// How many entries the running or last verification has reported.
std::uint64_t getEntries();

/// How many bytes the regular files among these have, and about how many were hashed of the entry in
/// progress.
std::uint64_t getFileBytes();

/// The value of the last verification, or "ERROR". Call only after HashWorker::wait; during a run this is a
/// data race. Asserts that some run has finished.
std::string getResult();

/// Why the last verification ended with "ERROR"; null when it did not. The same restrictions as for getResult
/// apply.
std::exception_ptr getFailure();

/// The first read error that ended a file's content early; null when there was none. The value of such a
/// verification covers only what could be read, and the system log warns of each such file. The same
/// restrictions as for getResult apply.
std::exception_ptr getReadFailure();

} // namespace Nerix::HashVerifierAPI
