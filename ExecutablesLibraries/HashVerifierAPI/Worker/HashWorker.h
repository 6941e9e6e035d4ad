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

/// What the worker's thread runs: HashWorker::execute() of the worker that it points to.
class HashLoggerExecutor {
public:
    explicit HashLoggerExecutor(HashWorker* worker) : m_worker(worker) {}
    void operator()() const;

private:
    HashWorker* m_worker;
};

/// Runs one verification at a time on a thread of its own, publishes status, progress and result in the
/// settings store, and holds the result for the caller. There is one instance per process.
///
/// Threads: start, wait, getResult and getFailure must be called from one thread at a time; getProgress and
/// getEntries may be called from any thread at any time; the rest is called by the worker's own thread while
/// it runs. No mutex guards the run: its counters and the result are written by the worker's thread alone,
/// and the four that others read (m_totalBytes, m_reportedBytes, m_entries, m_fileBytes) are
/// atomic. Only the handle of
/// the thread is exchanged under the lock of boost::atomic_load.
///
/// A run that fails adds one record to those of the levels that the failure passed: WRN, "Verification
/// failed: " and the diagnostic text, also for a failure that passed no level, such as an unknown hash name.
class HashWorker : private boost::noncopyable {
public:
    /// Created on the first call, which throws GenericException if "/" cannot be examined.
    static HashWorker& getInstance();

    /// Joins a worker that still runs.
    ~HashWorker();

    /// Launches a verification of root with the hash method of that name and returns once its status "active"
    /// is published. An unknown method name is not detected here; the run ends with "ERROR". The product must
    /// be initialised.
    ///
    /// Throws with nothing changed: GenericException "verification is already started" or "can't read
    /// filesystem statistics". If one of the following is thrown, no worker is running, and the result is
    /// "ERROR" if "00000111" had already been published: VConfException when the settings store refuses,
    /// ProductUninitializedException before IProductInfo::initializeProduct, boost::thread_resource_error
    /// when no thread can be created. Waits for a former worker's last setting first, and throws
    /// boost::thread_interrupted when interrupted there.
    HashWorker& start(const FileInput& root, const std::string& hashName);

    /// Like start, with options. What they refer to must outlive the run.
    HashWorker& start(const FileInput& root, const std::string& hashName, const RunOptions& options);

    /// Blocks until the last run has written its last setting and its thread has ended; returns at once when
    /// there is none. Throws boost::thread_resource_error on the worker's own thread; an interruption of the
    /// calling thread leaves as boost::thread_interrupted, and wait may be called again.
    HashWorker& wait();

    /// 16 hexadecimal digits, or "ERROR", of the last finished run. Call only after wait; during a run this
    /// is a data race. Asserts that some run has finished.
    std::string getResult();

    /// Why the last finished run ended with "ERROR"; null when it did not. Ask as for getResult.
    std::exception_ptr getFailure() const { return m_failure; }

    /// The first read error of the last finished run that ended a file's content early; null when there was
    /// none. The run has a value all the same, which is not that of the whole tree. Ask as for getResult.
    std::exception_ptr getReadFailure() const { return m_readFailure; }

    /// The percentage as of the last report, see Progress::text; never 100.
    std::string getProgress() const;

    /// How many entries were reported, finished or skipped.
    std::uint64_t getEntries() const { return m_entries; }

    /// How many bytes the regular files among these have, and about how many were hashed of the entry in
    /// progress.
    std::uint64_t getFileBytes() const { return m_fileBytes; }

    /// Returns the path under which the entry is hashed and recorded: that of the entry, or, with
    /// RunOptions::hashedRoot, another one, which is then stored in buffer.
    const std::string& hashedPath(const FileInput& entry, std::string& buffer) const;

    /// The root entry of the current verification; "/" before the first.
    const FileInput& getRoot() const { return m_root; }

    /// Called for each digest step on the worker's thread; advances progress within a long file. Throws
    /// VConfException when progress cannot be published, GenericException when a signal ends the process (see
    /// TerminationSignals.h).
    void log(unsigned long long bytes);

    /// Scanners report each entry, finished or skipped, with its value: Writes one scan-log record and counts
    /// the entry's rounded size as work, replacing the bytes counted for its steps. Throws as above.
    void log(const FileInput& entry, unsigned long long value);

    /// Like log(entry, value), with the entry's facts for its record; null if there are none.
    void log(const FileInput& entry, unsigned long long value, const EntryFacts* facts);

    /// Returns true if the records of the current run contain facts, so scanners should collect them.
    bool recordsFacts() const { return m_scanLog.hasFacts; }

    /// Scanners call this with the failure of an entry that could not be read. Returns true if the run goes
    /// on without the entry, and ends with "ERROR" later; see RunOptions::onUnreadable.
    bool continueWithout(const std::exception_ptr& failure);

    /// Throws GenericException if a signal ends the process; the run then fails.
    static void throwIfTerminating();

    /// Scanners report an entry whose content could not be read to its end, before its value; error is the
    /// errno. Warns of it in the system log and keeps the first for getReadFailure.
    void logReadError(const FileInput& entry, int error) noexcept;

    /// Publishes progress when more than 1 MiB of work was done since the last time.
    void onProgress();

    /// The body of the worker's thread. Never throws; failures become the result "ERROR".
    HashWorker& execute();

    /// Closes the scan log on the drive. Logs a warning if records are missing, for example because the drive
    /// is full.
    void shutdown();

    /// Ends a successful run: result and progress are published.
    void shutdown(unsigned long long hash);

    /// Ends a failed run by publishing message as the result. If the store fails, this is only logged.
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

    // Life of the thread: start() creates it and keeps two handles. The thread waits for m_activePublished:
    // true once "active" is published (so "inactive" cannot precede it), false if publishing failed and there
    // is nothing to do. At the end it clears m_thread (accessed only with boost::atomic_load/store), which
    // allows the next start, and then publishes "inactive". wait() joins m_startedThread, used only by the
    // starting thread, so it returns after the last write to the store.
    boost::shared_ptr<boost::thread> m_thread;
    boost::shared_ptr<boost::thread> m_startedThread;
    std::promise<bool> m_activePublished;

    RunOptions m_options;
    ScanLogStream m_scanLog{}; ///< m_logFile or the caller's; no stream while they go to the system log
    std::atomic<std::uint64_t> m_entries{0};
    std::uint64_t m_finishedFileBytes = 0; ///< size of the regular files that were reported
    std::atomic<std::uint64_t> m_fileBytes{0};
    bool m_isIncomplete = false; ///< entries could not be read, and the run went on without them
    std::exception_ptr m_failure;
    std::exception_ptr m_readFailure;
};

} // namespace Nerix
