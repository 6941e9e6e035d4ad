// A run in order: start calls begin, which publishes the first settings, opens the scan log and launches the
// thread. The thread runs execute: scan lets the root's scanner compute the value, and shutdown(hash) or fail
// publishes the result; publishInactive comes last. Meanwhile the scanners call log for each digest step and
// each entry, which writes the record and advances progress.

#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

#include "Common/Base/NoDestructor.h"
#include "Common/IO/DigestSession.h"
#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Assert.h"
#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/TerminationSignals.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/AccessError.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileScanners.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctions.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/RecordDetails.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogFile.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanRecord.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/Progress.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/PublishedState.h"
#include "Platform/SystemAPI/VconfSystemAPI/IVConf.h"

#include <boost/exception/diagnostic_information.hpp>
#include <boost/smart_ptr/make_shared.hpp>
#include <boost/thread/thread.hpp>

#include <cerrno>

#include <sys/statvfs.h>

namespace Nerix {

using Common::Logging::LoggingClass;
using Common::Utils::errinfo_description;
using Common::Utils::errinfo_path;
using Common::Utils::errinfo_stream;
using Common::Utils::GenericException;

namespace {

/// Stack size of the worker's thread in bytes; ContentStream's buffer uses an eighth of it. The default
/// depends on the process's limits and may be too small.
constexpr std::size_t stackSize = std::size_t{1} << 20U;

/// Counts the digest steps of the worker's thread as progress of the run.
class RunSteps final : public HashFunctions::StepObserver {
public:
    explicit RunSteps(HashWorker& worker) : m_worker(worker) {}
    void onStep(unsigned long long bytes) override { m_worker.log(bytes); }
    void onReadError(int error) noexcept override { m_worker.logReadError(m_worker.getRoot(), error); }

private:
    HashWorker& m_worker;
};

/// Logs the exception being handled. Never throws, because an exception that leaves the worker's thread would
/// end the process.
void logCurrentException(LoggingClass::Level level, const char* what) noexcept {
    try {
        Common::Logging::LoggingStream(NERIX_LOG_TAG, level, LoggingClass::shortenPath(__FILE__), __LINE__)
                .getStream()
            << what << boost::current_exception_diagnostic_information(true);
    } catch (...) { // NOLINT(bugprone-empty-catch): out of memory; the failed run itself is still published
    }
}

} // namespace

void HashLoggerExecutor::operator()() const {
    m_worker->execute();
}

HashWorker& HashWorker::getInstance() {
    static HashWorker instance;
    return instance;
}

HashWorker::HashWorker() : m_root("/") {}

HashWorker::~HashWorker() {
    const boost::this_thread::disable_interruption noInterruption; // wait would throw
    wait();
    shutdown();
}

HashWorker& HashWorker::start(const FileInput& root, const std::string& hashName) {
    return begin(root, hashName, nullptr);
}

HashWorker& HashWorker::start(const FileInput& root, const std::string& hashName, const RunOptions& options) {
    return begin(root, hashName, &options);
}

HashWorker& HashWorker::begin(const FileInput& root, const std::string& hashName, const RunOptions* options) {
    if (boost::atomic_load(&m_thread)) {
        BOOST_THROW_EXCEPTION(GenericException() << errinfo_stream("verification is already started"));
    }
    wait(); // the previous worker may still be writing "inactive"
    prepare(root, hashName);
    m_options = options != nullptr ? *options : RunOptions{};
    PublishedState::begin();
    try {
        PublishedState::progress(PublishedState::noProgress);
        m_scanLog = options != nullptr ? options->scanLog : openLogOnDrive();
        launch();
    } catch (...) {
        shutdown(PublishedState::errorResult); // otherwise watchers would wait forever
        throw;
    }
    return *this;
}

void HashWorker::prepare(const FileInput& root, const std::string& hashName) {
    struct statvfs statistics {};
    if (::statvfs(root.path.c_str(), &statistics) != 0) {
        const int error = errno;
        BOOST_THROW_EXCEPTION(GenericException()
                              << errinfo_stream("can't read filesystem statistics") << errinfo_path(root.path)
                              << errinfo_description("statvfs:" +
                                                     Common::Utils::get_string_from_errno(error)));
    }
    m_root = root;
    m_hashName = hashName;
    m_blockSize = static_cast<std::uint32_t>(statistics.f_bsize);
    m_totalBytes = (std::uint64_t{statistics.f_blocks} - statistics.f_bfree) * statistics.f_bsize;
    m_processedBytes = 0;
    m_reportedBytes = 0;
    m_currentBytes = 0;
    m_entries = 0;
    m_finishedFileBytes = 0;
    m_fileBytes = 0;
    m_isIncomplete = false;
    m_failure = nullptr;
    m_readFailure = nullptr;
}

ScanLogStream HashWorker::openLogOnDrive() {
    m_logFile = openScanLog();
    return {m_logFile.is_open() ? &m_logFile : nullptr, false};
}

void HashWorker::launch() {
    m_activePublished = std::promise<bool>();
    boost::thread::attributes attributes;
    attributes.set_stack_size(stackSize);
    m_startedThread = boost::make_shared<boost::thread>(attributes, HashLoggerExecutor(this));
    boost::atomic_store(&m_thread, m_startedThread);
    try {
        PublishedState::active();
    } catch (...) {
        m_activePublished.set_value(false);
        wait();
        throw;
    }
    m_activePublished.set_value(true);
}

HashWorker& HashWorker::wait() {
    if (m_startedThread) {
        m_startedThread->join();
        m_startedThread.reset();
    }
    return *this;
}

std::string HashWorker::getResult() {
    NerixAssert(!m_calculatedHash.empty());
    return m_calculatedHash;
}

std::string HashWorker::getProgress() const {
    return Progress::text(m_reportedBytes, m_totalBytes);
}

void HashWorker::throwIfTerminating() {
    if (const int signal = Common::Utils::terminationSignal()) {
        BOOST_THROW_EXCEPTION(GenericException() << errinfo_stream("ended by signal ", signal));
    }
}

bool HashWorker::continueWithout(const std::exception_ptr& failure) {
    throwIfTerminating();
    if (!m_options.onUnreadable) {
        return false;
    }
    m_isIncomplete = true;
    m_options.onUnreadable(failure);
    return true;
}

const std::string& HashWorker::hashedPath(const FileInput& entry, std::string& buffer) const {
    const std::string& path = entry.path.native();
    if (m_options.hashedRoot.empty()) {
        return path;
    }
    const std::string& root = m_root.path.native();
    const std::string below = root == "/" ? path : path.substr(root.size()); // empty, or begins with a slash
    if (below.empty() || below == "/") {
        return m_options.hashedRoot;
    }
    buffer = (m_options.hashedRoot == "/" ? "" : m_options.hashedRoot) + below;
    return buffer;
}

void HashWorker::log(unsigned long long bytes) {
    throwIfTerminating();
    m_currentBytes += bytes;
    m_fileBytes.store(m_finishedFileBytes + m_currentBytes, std::memory_order_relaxed);
    onProgress();
}

void HashWorker::log(const FileInput& entry, unsigned long long value) {
    log(entry, value, nullptr);
}

void HashWorker::log(const FileInput& entry, unsigned long long value, const EntryFacts* facts) {
    throwIfTerminating();
    record(entry, value, facts);
    m_entries.store(m_entries + 1, std::memory_order_relaxed); // only this thread writes it
    m_finishedFileBytes +=
        S_ISREG(entry.status.st_mode) ? static_cast<std::uint64_t>(entry.status.st_size) : 0;
    m_fileBytes.store(m_finishedFileBytes, std::memory_order_relaxed);
    m_processedBytes += Progress::workOf(static_cast<std::uint64_t>(entry.status.st_size), m_blockSize);
    m_currentBytes = 0;
    onProgress();
}

void HashWorker::logReadError(const FileInput& entry, int error) noexcept {
    try {
        const auto text = errinfo_stream("access error: can't read content of file to its end: ", entry.path,
                                         Common::Utils::get_string_from_errno(error));
        NERIX_LOG_STREAM(WRN) << text.value();
        const std::exception_ptr failure =
            std::make_exception_ptr(FileScanners::accessError("read", entry.path, error) << text);
        if (m_options.onUnreadable) {
            m_isIncomplete = true;
            m_options.onUnreadable(failure);
        } else if (!m_readFailure) {
            m_readFailure = failure;
        }
    } catch (...) {
        m_readFailure = std::current_exception();
    }
}

void HashWorker::record(const FileInput& entry, unsigned long long value, const EntryFacts* facts) const {
    std::string buffer;
    const std::string& path = hashedPath(entry, buffer);
    if (m_scanLog.stream == nullptr) {
        NERIX_LOG(INF, "%s", loggedScanRecord(value, path).c_str());
        return;
    }
    std::string record = scanRecord(value, path);
    if (m_scanLog.hasFacts) {
        record += recordDetails(entry.status, facts);
    }
    *m_scanLog.stream << record << '\n';
}

void HashWorker::onProgress() {
    const std::uint64_t done = m_processedBytes + m_currentBytes;
    if (Progress::isWorthReporting(done, m_reportedBytes)) {
        m_reportedBytes = done;
        PublishedState::progress(getProgress());
    }
}

HashWorker& HashWorker::execute() {
    try {
        if (m_activePublished.get_future().get()) {
            scan();
        }
    } catch (...) {
        fail();
    }
    boost::atomic_store(&m_thread, boost::shared_ptr<boost::thread>());
    publishInactive();
    return *this;
}

void HashWorker::scan() {
    const IFileScanner& scanner = FileScanners::getInstance(m_root);
    const IHashFunction& function = HashFunctions::getInstance(m_hashName);
    const Common::IO::DigestSession session;
    const RunSteps observer(*this);
    const IFileScanner::hash_t value = scanner.process(m_root, 0, function);
    if (m_isIncomplete) {
        BOOST_THROW_EXCEPTION(GenericException() << errinfo_stream("some entries could not be read"));
    }
    shutdown(value);
}

void HashWorker::fail() noexcept {
    static Common::NoDestructor<const std::string> errorMessage(PublishedState::errorResult);
    m_failure = std::current_exception();
    // WRN, because ERR messages mark the directory levels that the failure passed through.
    logCurrentException(LoggingClass::WRN, "Verification failed: ");
    try {
        shutdown(*errorMessage);
    } catch (...) {
        logCurrentException(LoggingClass::ERR, "Exception while ending a failed scan: ");
    }
    m_calculatedHash = *errorMessage;
}

void HashWorker::publishInactive() noexcept {
    // A store that fails once may succeed the next time, and a status left "active" would show a run that
    // never ends.
    for (int attempts = 3; attempts > 0; --attempts) {
        try {
            PublishedState::inactive();
            return;
        } catch (...) {
            logCurrentException(LoggingClass::ERR, "Exception when setting scan status: ");
        }
    }
}

void HashWorker::shutdown() {
    if (m_logFile.is_open()) {
        if (!m_logFile.flush()) { // also after an earlier record that failed
            NERIX_LOG_STREAM(WRN) << "The scan log on the drive is incomplete: writing to it failed.";
        }
        m_logFile.close();
    }
}

void HashWorker::shutdown(unsigned long long hash) {
    shutdown();
    m_calculatedHash = hexadecimal16(hash);
    PublishedState::succeeded(m_calculatedHash);
}

void HashWorker::shutdown(const std::string& message) {
    shutdown();
    try {
        PublishedState::failed(message);
    } catch (const Platform::IVConf::VConfException&) {
        logCurrentException(LoggingClass::ERR, "Exception when setting scan result: ");
    }
}

} // namespace Nerix
