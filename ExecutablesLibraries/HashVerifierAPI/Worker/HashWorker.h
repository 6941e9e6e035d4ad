#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/RunOptions.h"

#include <boost/core/noncopyable.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <atomic>
#include <cstdint>
#include <exception>
#include <fstream>
#include <future>
#include <string>

namespace boost {
class thread;
}

namespace Nerix {

struct EntryFacts;
class HashWorker;

/// The function object of the worker's thread: calls HashWorker::execute().
class HashLoggerExecutor {
public:
    explicit HashLoggerExecutor(HashWorker* worker) : m_worker(worker) {}
    void operator()() const;

private:
    HashWorker* m_worker;
};

/// Runs one verification at a time on a separate thread, publishes status, progress and result in the
/// settings store, and stores the result for the caller. There is one instance per process.
///
/// Threads: start, wait, getResult, getFailure and getReadFailure must be called from one thread at a time;
/// getProgress, getEntries and getFileBytes may be called from any thread at any time; the worker's thread
/// calls the rest while it runs. No mutex guards the run: once the worker's thread is running, only that
/// thread writes the counters and the result. The four that other threads read (m_totalBytes,
/// m_reportedBytes, m_entries, m_fileBytes) are atomic.
///
/// A run that fails logs one WRN message, "Verification failed: " and the diagnostic text, in addition to the
/// ERR message of each directory level that the failure passed through (Walk.h). There may be no such level,
/// for example for an unknown hash method.
class HashWorker : private boost::noncopyable {
public:
    /// Returns the instance. The first call creates it, and throws GenericException if "/" cannot be
    /// examined.
    static HashWorker& getInstance();

    /// Waits for a run that has not ended.
    ~HashWorker();

    /// Launches a verification of root with the hash method of that name and returns once its status "active"
    /// is published. An unknown hash method is not detected here; the run ends with "ERROR". Without options,
    /// the product must be initialized.
    ///
    /// Throws with nothing changed: GenericException "verification is already started" or "can't read
    /// filesystem statistics". If one of the following is thrown, no worker is running, and the published
    /// result is "ERROR" if "00000111" had already been published: VConfException if the settings store
    /// fails, ProductUninitializedException before IProductInfo::initializeProduct,
    /// boost::thread_resource_error if no thread can be created. First waits for the previous worker's last
    /// setting, and throws boost::thread_interrupted if interrupted there.
    HashWorker& start(const FileInput& root, const std::string& hashName);

    /// Does the same with options. What they refer to must outlive the run.
    HashWorker& start(const FileInput& root, const std::string& hashName, const RunOptions& options);

    /// Blocks until the last run has written its last setting and its thread has ended; returns immediately
    /// if there is none. Throws boost::thread_resource_error on the worker's thread, and
    /// boost::thread_interrupted if the calling thread is interrupted; wait may then be called again.
    HashWorker& wait();

    /// Returns 16 hexadecimal digits, or "ERROR", of the last finished run. Call only after wait; during a
    /// run this is a data race. Asserts that some run has finished.
    std::string getResult();

    /// Returns the failure with which the last finished run ended, or null if it succeeded. The restrictions
    /// of getResult apply.
    std::exception_ptr getFailure() const { return m_failure; }

    /// Returns the first read error of the last finished run that ended a file's content early, or null if
    /// there was none or the run had RunOptions::onUnreadable. The run has a value even then, but not that of
    /// the whole tree. The restrictions of getResult apply.
    std::exception_ptr getReadFailure() const { return m_readFailure; }

    /// Returns the percentage as of the last report; see Progress::text. It is never 100.
    std::string getProgress() const;

    /// Returns the number of entries reported, finished or skipped.
    std::uint64_t getEntries() const { return m_entries; }

    /// Returns the size in bytes of the regular files reported so far, plus approximately what has been
    /// hashed of the entry in progress.
    std::uint64_t getFileBytes() const { return m_fileBytes; }

    /// Returns the path under which the entry is hashed and recorded. The reference stays valid as long as
    /// entry, buffer and the run's options do; buffer is used if the path has to be composed.
    const std::string& hashedPath(const FileInput& entry, std::string& buffer) const;

    /// Returns the root entry of the current verification; "/" before the first.
    const FileInput& getRoot() const { return m_root; }

    /// Called for each digest step on the worker's thread; advances progress within a long file. Throws
    /// VConfException if progress cannot be published, GenericException if a signal ends the process (see
    /// TerminationSignals.h).
    void log(unsigned long long bytes);

    /// Reports an entry, finished or skipped, with its value. Writes one record and counts the entry's
    /// rounded size as work, replacing the bytes counted for its steps. Throws like log(bytes). Called by the
    /// scanners.
    void log(const FileInput& entry, unsigned long long value);

    /// Does the same with the entry's facts for its record; null if there are none.
    void log(const FileInput& entry, unsigned long long value, const EntryFacts* facts);

    /// Returns true if the records of the current run contain facts, which the scanners must then collect.
    bool recordsFacts() const { return m_scanLog.hasFacts; }

    /// Returns true if the run continues without an entry that could not be read, and later ends with
    /// "ERROR"; see RunOptions::onUnreadable. Called by the scanners with the entry's failure.
    bool continueWithout(const std::exception_ptr& failure);

    /// Throws GenericException if a signal ends the process; the run then fails.
    static void throwIfTerminating();

    /// Reports an entry whose content could not be read to its end; error is the errno. Logs a warning.
    /// Passes the error to RunOptions::onUnreadable, after which the run ends with "ERROR", or, without that,
    /// keeps the first one for getReadFailure. Called by the scanners before they report the entry's value.
    void logReadError(const FileInput& entry, int error) noexcept;

    /// Publishes progress if Progress::isWorthReporting.
    void onProgress();

    /// The body of the worker's thread. Never throws; failures become the result "ERROR".
    HashWorker& execute();

    /// Closes the scan log on the drive. Logs a warning if records are missing, for example because the drive
    /// is full.
    void shutdown();

    /// Ends a successful run: publishes result and progress.
    void shutdown(unsigned long long hash);

    /// Ends a failed run: publishes message as the result. A failure of the store is only logged.
    void shutdown(const std::string& message);

private:
    HashWorker();

    HashWorker& begin(const FileInput& root, const std::string& hashName, const RunOptions* options);
    void prepare(const FileInput& root, const std::string& hashName);
    ScanLogStream openLogOnDrive();
    void launch();
    void record(const FileInput& entry, unsigned long long value, const EntryFacts* facts) const;
    void scan();
    void fail() noexcept;
    void publishInactive() noexcept;

    std::fstream m_logFile; ///< open while records go to a drive
    FileInput m_root;
    std::string m_hashName;
    std::uint32_t m_blockSize = 0;
    std::atomic<std::uint64_t> m_totalBytes{0};    ///< estimate of the work: bytes in use on the file system
    std::atomic<std::uint64_t> m_reportedBytes{0}; ///< work done when progress was last published
    std::uint64_t m_processedBytes = 0;            ///< work of all finished entries
    std::uint64_t m_currentBytes = 0;              ///< bytes hashed in the entry in progress
    std::string m_calculatedHash;

    // Lifetime of the thread: start() creates it and stores two handles. The thread waits for
    // m_activePublished: true once "active" is published (so "inactive" cannot precede it), false if
    // publishing failed and there is nothing to do. At its end, the thread clears m_thread (accessed only
    // with boost::atomic_load/store), which allows the next start, and then publishes "inactive". wait()
    // joins m_startedThread, used only by the starting thread, so it returns after the last write to the
    // store.
    boost::shared_ptr<boost::thread> m_thread;
    boost::shared_ptr<boost::thread> m_startedThread;
    std::promise<bool> m_activePublished;

    RunOptions m_options;
    ScanLogStream m_scanLog{}; ///< m_logFile, the caller's stream, or null for the system log
    std::atomic<std::uint64_t> m_entries{0};
    std::uint64_t m_finishedFileBytes = 0; ///< size of the regular files that were reported
    std::atomic<std::uint64_t> m_fileBytes{0};
    bool m_isIncomplete = false; ///< something could not be read, and the run continued
    std::exception_ptr m_failure;
    std::exception_ptr m_readFailure;
};

} // namespace Nerix
