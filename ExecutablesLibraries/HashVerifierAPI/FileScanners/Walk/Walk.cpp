// The worker's thread loops until the root has been reported: in each turn it reports what is finished at the
// front of the queue, or examines the front if that was deferred, or examines entries ahead. While it
// examines entries ahead, it continues to report whenever it takes another entry or has hashed another
// mebibyte. The helpers only examine entries ahead.

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Walk.h"

#include "Common/IO/DigestSession.h"
#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/RethrowExceptionStream.h"
#include "Common/Utils/TerminationSignals.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FactSteps.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

#include <boost/exception/diagnostic_information.hpp>

namespace Nerix::FileScanners {

using hash_t = IFileScanner::hash_t;
using State = QueuedEntry::State;

/// Reports the steps of the front as they are taken, except those that were already reported.
class Walk::FrontSteps final : public HashFunctions::StepObserver {
public:
    FrontSteps(Reporter& reporter, QueuedEntry& front) : m_reporter(reporter), m_front(front) {}

    void onStep(unsigned long long bytes) override {
        if (m_taken++ < m_front.reportedSteps) {
            return;
        }
        m_isReporting = true; // stays true if reportStep throws
        m_reporter.reportStep(m_front, bytes);
        m_isReporting = false;
    }
    void onReadError(int error) noexcept override { m_front.readError = error; }

    bool hasReportFailed() const { return m_isReporting; }

private:
    Reporter& m_reporter;
    QueuedEntry& m_front;
    std::uint64_t m_taken = 0;
    bool m_isReporting = false;
};

/// Supplies the entries of the queue.
class Walk::QueueSupply : public EntrySupply {
public:
    void deliver(QueuedEntry& entry, StepSizes& steps) noexcept override {
        walk.m_queue.deliver(entry, steps);
    }

    void settle(QueuedEntry& entry, State state, StepSizes& steps) noexcept override {
        walk.m_queue.settle(entry, state, steps);
    }

protected:
    explicit QueueSupply(Walk& itsWalk) : walk(itsWalk) {}
    ~QueueSupply() = default;

    QueuedEntry* takeFromQueue(std::size_t busy) noexcept {
        return busy < walk.m_plan.entriesPerThread ? walk.m_queue.take(unused, busy) : nullptr;
    }

    Walk& walk;
    ReportQueue::Entries unused; ///< one entry for the next name
};

/// Reports finished entries whenever it is called.
class Walk::WorkerSupply final : public QueueSupply {
public:
    explicit WorkerSupply(Walk& itsWalk) : QueueSupply(itsWalk) {}

    QueuedEntry* take(std::size_t busy) noexcept override {
        report();
        return m_failure ? nullptr : takeFromQueue(busy);
    }

    void deliver(QueuedEntry& entry, StepSizes& steps) noexcept override {
        QueueSupply::deliver(entry, steps);
        report();
    }

    bool shouldStop() noexcept override { return m_failure || Common::Utils::terminationSignal() != 0; }

    void rethrowFailure() const {
        if (m_failure) {
            std::rethrow_exception(m_failure);
        }
    }

private:
    void report() noexcept {
        try {
            walk.m_reporter.reportFinished();
            walk.m_helpers.startFurtherIfWaiting();
            unused.resize(1);
        } catch (...) {
            m_failure = std::current_exception();
        }
    }

    std::exception_ptr m_failure; ///< of a report
};

class Walk::HelperSupply final : public QueueSupply {
public:
    explicit HelperSupply(Walk& itsWalk) : QueueSupply(itsWalk) {}

    QueuedEntry* take(std::size_t busy) noexcept override {
        try {
            unused.resize(1);
        } catch (...) {
            return nullptr; // no memory: this helper ends, the others continue
        }
        return busy == 0 ? walk.m_queue.takeOrWait(unused) : takeFromQueue(busy);
    }

    bool shouldStop() noexcept override {
        return walk.m_helpers.areStopping() || Common::Utils::terminationSignal() != 0;
    }
};

Walk::Walk(const IFileScanner& directory, const IHashFunction& function, Place place, const FileInput& root,
           hash_t value)
    : m_scope{function, directory, root, HashWorker::getInstance().recordsFacts()},
      m_place(place),
      m_rootValue(value),
      m_plan(planThreads(function.lanes())),
      m_queue(m_plan.cores),
      m_helpers(m_queue),
      m_reporter(m_queue, m_helpers, function) {}

Walk::~Walk() = default;

hash_t Walk::run() {
    try {
        ReportQueue::Entries root(1);
        m_queue.begin(root);
        while (!m_reporter.result()) {
            takeTurn();
        }
    } catch (...) {
        passOn();
    }
    return *m_reporter.result();
}

void Walk::takeTurn() {
    switch (m_queue.next()) {
    case ReportQueue::Turn::report:
        m_reporter.reportFinished();
        break;
    case ReportQueue::Turn::examineFront:
        examineFront();
        break;
    case ReportQueue::Turn::takeEntries:
        examineAhead();
        break;
    }
}

void Walk::examineAhead() {
    m_helpers.retryWithout([&] {
        if (!m_examiner) {
            m_supply = std::make_unique<WorkerSupply>(*this);
            m_examiner = std::make_unique<Examiner>(*m_supply, m_scope);
        }
    });
    m_examiner->run();
    m_supply->rethrowFailure();
    m_reporter.reportFinished();
}

void Walk::examineFront() {
    QueuedEntry& front = m_queue.front();
    m_reporter.reportDirectoriesOf(front);
    FrontSteps observer(m_reporter, front);
    StepSizes none; // all have been reported
    try {
        examine(front);
    } catch (...) {
        if (!observer.hasReportFailed() && m_helpers.areRunning() && isLackOfResources()) {
            m_queue.settle(front, State::deferred, none);
            m_helpers.stop(); // and try again
            return;
        }
        if (observer.hasReportFailed()) {
            m_queue.settle(front, State::deferred, none);
            throw;
        }
        front.failure = std::current_exception(); // for the reporter
    }
    const bool isRoot = front.parent == nullptr;
    m_queue.settle(front, State::examined, none);
    if (isRoot && !front.failure) {
        m_helpers.start(m_plan, [this] { help(); });
    }
}

void Walk::examine(QueuedEntry& entry) {
    Judgement judgement = Judgement::accepted;
    if (entry.parent == nullptr) {
        entry.input = m_scope.root;
        entry.scanner = &m_scope.directoryScanner;
        entry.facts = m_scope.hasFacts ? std::make_unique<EntryFacts>() : nullptr;
    } else {
        judgement = identify(entry, m_scope);
    }
    if (judgement == Judgement::accepted) {
        const hash_t value = entry.parent == nullptr ? m_rootValue : 0;
        entry.value = entry.facts ? examineWithFacts(*entry.input, entry.scanner->remainder(), value,
                                                     m_scope.function, *entry.facts)
                                  : entry.scanner->examine(*entry.input, value, m_scope.function);
        list(entry, m_scope);
    }
}

void Walk::help() {
    try {
        const Common::IO::DigestSession session;
        HelperSupply supply(*this);
        Examiner(supply, m_scope).run();
    } catch (...) { // NOLINT(bugprone-empty-catch): no memory for this helper; the others continue
    }
}

void Walk::passOn() const {
    std::exception_ptr failure = std::current_exception();
    for (std::size_t depth = m_reporter.depth(); depth != 0; --depth) {
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
