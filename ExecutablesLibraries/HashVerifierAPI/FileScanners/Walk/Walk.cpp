#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Walk.h"

#include "Common/IO/DigestSession.h"
#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/RethrowExceptionStream.h"
#include "Common/Utils/TerminationSignals.h"
#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileScanners.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/LackOfResources.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

#include <boost/exception/diagnostic_information.hpp>
#include <boost/thread/thread.hpp>

#include <algorithm>

#include <csignal>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

namespace Nerix::FileScanners {

using hash_t = IFileScanner::hash_t;

namespace {

constexpr std::size_t maxHelpers = 7;

/// How many helpers leave enough file descriptors for the settings store and the logs, which must not fail
/// because of them. A helper has up to two open.
std::size_t helpersForDescriptors() {
    constexpr rlim_t reserved = 32;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return maxHelpers;
    }
    return static_cast<std::size_t>(limit.rlim_cur > reserved ? (limit.rlim_cur - reserved) / 2 : 0);
}

/// At least three helpers even on few cores, so that several requests can wait for a cold disk at once.
std::size_t helperCount() {
    cpu_set_t cores{};
    const int count = ::sched_getaffinity(0, sizeof cores, &cores) == 0 ? CPU_COUNT(&cores) : 1;
    int threads = count > 1 ? std::max(count, 4) : 1;
    if (Common::DebugAndTestParameters::loaded()) {
        threads = Common::getDebugAndTestParameters().getCustomIntParam("hashVerifierThreads", threads);
    }
    const std::size_t wanted = static_cast<std::size_t>(std::max(threads, 1)) - 1;
    return std::min({wanted, maxHelpers, helpersForDescriptors()});
}

std::string pathInside(const std::string& directory, const char* name) {
    std::string path;
    path.reserve(directory.size() + 1 + std::char_traits<char>::length(name));
    path.append(directory).append(directory.back() == '/' ? 0 : 1, '/').append(name);
    return path;
}

/// Blocks all signals on this thread, so that threads started meanwhile inherit the mask and receive none.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t m_before{};
};

struct Stopped {};

} // namespace

/// Reports steps of the front entry as they are taken, skipping those already reported before a retry.
class Walk::FrontSteps final : public HashFunctions::StepObserver {
public:
    FrontSteps(Walk& walk, Cell& cell) : m_walk(walk), m_cell(cell) {}

    void onStep(unsigned long long bytes) override {
        if (m_taken++ < m_cell.reportedSteps) {
            return;
        }
        m_walk.m_isReporting = true;
        m_walk.m_worker.log(bytes);
        m_walk.m_isReporting = false;
        ++m_cell.reportedSteps;
    }
    void onReadError(int error) noexcept override { m_cell.readError = error; }

private:
    Walk& m_walk;
    Cell& m_cell;
    std::uint64_t m_taken = 0;
};

/// Collects the steps of an entry examined ahead, and hands them to the tape once per mebibyte, in case the
/// entry has reached the front. When the reporter itself works ahead, it continues reporting between two
/// reads.
class Walk::AheadSteps final : public HashFunctions::StepObserver {
public:
    AheadSteps(Walk& walk, Cell& cell, bool isReporter)
        : m_walk(walk), m_cell(cell), m_isReporter(isReporter) {}

    void onStep(unsigned long long bytes) override {
        if (isStopped()) {
            throw Stopped();
        }
        steps.add({bytes, 1});
        m_bytes += bytes;
        if (m_bytes > oneMebibyte) {
            m_bytes = 0;
            m_walk.m_tape.addSteps(m_cell, steps);
        }
    }

    void onReadError(int error) noexcept override { m_cell.readError = error; }

    bool shouldStop() noexcept override { return isStopped() || (m_isReporter && !m_walk.reportMeanwhile()); }

    bool isStopped() const { return m_walk.m_isStopping || Common::Utils::terminationSignal() != 0; }

    Steps steps; ///< not yet handed to the tape

private:
    static constexpr unsigned long long oneMebibyte = 1U << 20U;

    Walk& m_walk;
    Cell& m_cell;
    const bool m_isReporter;
    unsigned long long m_bytes = 0;
};

/// Collects the steps of a fold that may be retried; they are reported only after it succeeds.
class Walk::FoldSteps final : public HashFunctions::StepObserver {
public:
    void onStep(unsigned long long bytes) override { steps.add({bytes, 1}); }
    void onReadError(int) noexcept override {} // a list of values is not read

    Steps steps;
};

Walk::Walk(const IFileScanner& directory, const IHashFunction& function, Place place)
    : m_directory(directory),
      m_function(function),
      m_place(place),
      m_worker(HashWorker::getInstance()),
      m_rootDevice(m_worker.getRoot().status.st_dev),
      m_helperCount(helperCount()),
      m_tape(std::min<std::size_t>(512 * m_helperCount, 2048)) {}

Walk::~Walk() {
    stopHelpers();
}

hash_t Walk::run(const FileInput& root, hash_t value) {
    m_root = &root;
    m_rootValue = value;
    Tape::Cells cells(1);
    m_tape.begin(cells);
    while (!m_result) {
        try {
            step();
        } catch (...) {
            if (m_isReporting || m_helpers.empty() || !isLackOfResources()) {
                passOn();
            }
            // The helpers may be holding the missing memory or descriptors: stop them and retry.
            stopHelpers();
        }
    }
    return *m_result;
}

void Walk::step() {
    m_reported.clear();
    m_blank.resize(1);
    const Tape::Turn turn = m_tape.next(m_reported, m_blank);
    m_isReporting = true;
    for (Cell& cell : m_reported) {
        report(cell);
    }
    if (turn.cell == nullptr && !m_result) {
        reportProgress();
    }
    m_isReporting = false;
    if (turn.cell != nullptr && turn.isAhead) {
        examineAhead(*turn.cell, true);
    } else if (turn.cell != nullptr) {
        examineInFront(*turn.cell);
    }
    if (m_failure) {
        std::rethrow_exception(m_failure);
    }
}

void Walk::report(Cell& cell) {
    reportDirectories(cell.listing ? &cell : cell.parent);
    m_depth = cell.depth;
    if (cell.failure) {
        reportSteps(cell, cell.steps);
        std::rethrow_exception(cell.failure);
    }
    if (cell.parent != nullptr && !cell.scanner->accept(*cell.entry)) {
        return; // reported by accept, if at all
    }
    if (cell.listing) {
        foldEntries(cell);
    } else {
        reportSteps(cell, cell.steps);
    }
    if (cell.readError != 0) {
        m_worker.logReadError(*cell.entry, cell.readError);
    }
    m_worker.log(*cell.entry, cell.value);
    if (cell.parent == nullptr) {
        m_result = cell.value;
        return;
    }
    Listing& listing = *cell.parent->listing;
    constexpr std::size_t longestLine = 21; // twenty digits and the line feed
    retryAlone([&] { listing.values.reserve(listing.names.size() * longestLine); });
    listing.values += std::to_string(cell.value);
    listing.values += '\n';
}

void Walk::foldEntries(Cell& directory) {
    FoldSteps observer; // hides the AheadSteps observer if we are in the middle of an entry ahead
    retryAlone([&] { directory.value = m_function.apply(directory.value, directory.listing->values); });
    reportSteps(directory, observer.steps);
}

template <class Action>
void Walk::retryAlone(Action action) {
    try {
        action();
    } catch (...) {
        if (m_helpers.empty() || !isLackOfResources()) {
            throw;
        }
        stopHelpers();
        action();
    }
}

void Walk::reportDirectories(Cell* innermost) {
    m_unreported.clear();
    for (Cell* cell = innermost; cell != nullptr && !cell->listing->isReported; cell = cell->parent) {
        m_unreported.push_back(cell);
    }
    for (; !m_unreported.empty(); m_unreported.pop_back()) {
        Cell& directory = *m_unreported.back();
        m_depth = directory.depth;
        reportSteps(directory, directory.steps);
        directory.listing->isReported = true;
    }
}

void Walk::reportSteps(Cell& cell, const Steps& steps) {
    for (const Steps::Run& run : steps.runs()) {
        for (std::uint64_t step = 0; step != run.count; ++step) {
            m_worker.log(run.bytes);
            ++cell.reportedSteps;
        }
    }
}

void Walk::reportProgress() {
    Steps steps;
    if (Cell* const front = m_tape.awaited(steps)) {
        reportDirectories(front->parent);
        m_depth = front->depth;
        reportSteps(*front, steps);
    }
}

bool Walk::reportMeanwhile() noexcept {
    m_isReporting = true;
    try {
        do {
            m_reported.clear();
            m_tape.takeFinished(m_reported);
            for (Cell& cell : m_reported) {
                report(cell);
            }
        } while (!m_reported.empty());
        reportProgress();
    } catch (...) {
        m_failure = std::current_exception();
        m_isStopping = true;
        return false;
    }
    m_isReporting = false;
    return true;
}

void Walk::examineInFront(Cell& cell) {
    m_isReporting = true;
    reportDirectories(cell.parent); // they may have been examined ahead and not reported yet
    m_isReporting = false;
    m_depth = cell.depth;
    Steps none;
    try {
        const FrontSteps observer(*this, cell);
        examine(cell);
    } catch (...) {
        m_tape.settle(cell, Cell::State::Left, none);
        throw;
    }
    const bool isRoot = cell.parent == nullptr;
    m_tape.settle(cell, Cell::State::Settled, none);
    if (isRoot) {
        startHelpers();
    }
}

void Walk::examineAhead(Cell& cell, bool isReporter) {
    AheadSteps observer(*this, cell, isReporter);
    Cell::State state = Cell::State::Left;
    try {
        examine(cell);
        // If reading was cut short by a stop, the value is invalid.
        state = observer.isStopped() ? Cell::State::Left : Cell::State::Settled;
    } catch (const TooManyNames&) { // NOLINT(bugprone-empty-catch): the reporter lists the directory
    } catch (...) {
        if (!observer.isStopped() && !isLackOfResources()) {
            cell.failure = std::current_exception();
            state = Cell::State::Settled;
        }
    }
    m_tape.settle(cell, state, observer.steps);
}

void Walk::examine(Cell& cell) {
    constexpr std::size_t maxNamesAhead = 16384;
    Judgement judgement = Judgement::accepted;
    if (cell.parent == nullptr) {
        cell.entry = *m_root;
        cell.scanner = &m_directory;
    } else {
        const Cell& parent = *cell.parent;
        cell.entry.emplace(pathInside(parent.entry->path.native(), parent.listing->names[cell.name]));
        cell.scanner = &getInstance(*cell.entry);
        judgement = cell.scanner->judge(*cell.entry, m_rootDevice);
    }
    if (judgement == Judgement::accepted) {
        cell.value = cell.scanner->examine(*cell.entry, cell.parent == nullptr ? m_rootValue : 0, m_function);
        if (cell.scanner == &m_directory) {
            cell.listing = std::make_unique<Listing>(
                Names(cell.entry->path, cell.isAhead ? maxNamesAhead : Names::unlimited));
        }
    }
}

void Walk::startHelpers() {
    const SignalsBlocked blocked;
    boost::thread::attributes attributes;
    attributes.set_stack_size(std::size_t{1} << 20U); // of which the buffer of a content takes 128 KiB
    try {
        m_helpers.reserve(m_helperCount);
        while (m_helpers.size() < m_helperCount) {
            m_helpers.push_back(std::make_unique<boost::thread>(attributes, [this] { help(); }));
        }
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): fewer helpers, or none, are enough
    }
}

void Walk::stopHelpers() noexcept {
    const boost::this_thread::disable_interruption noInterruption; // join would throw
    m_isStopping = true;
    m_tape.stop();
    for (const auto& helper : m_helpers) {
        helper->join();
    }
    m_helpers.clear();
}

void Walk::help() {
    try {
        const Common::IO::DigestSession session;
        Tape::Cells blank(1);
        while (Cell* const cell = m_tape.takeAhead(blank)) {
            examineAhead(*cell, false);
            blank.resize(1);
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): no memory for a cell; the others go on
    }
}

void Walk::passOn() const {
    std::exception_ptr failure = std::current_exception();
    for (std::size_t depth = m_depth; depth != 0; --depth) {
        try {
            try {
                std::rethrow_exception(failure);
            } catch (...) {
                NERIX_LOG_STREAM(ERR) << "Exception when scanning filesystem: "
                                      << boost::current_exception_diagnostic_information(true);
                Common::Utils::rethrowWithContext(m_place.function, m_place.file, m_place.line, "");
            }
        } catch (...) {
            failure = std::current_exception();
        }
    }
    std::rethrow_exception(failure);
}

} // namespace Nerix::FileScanners
