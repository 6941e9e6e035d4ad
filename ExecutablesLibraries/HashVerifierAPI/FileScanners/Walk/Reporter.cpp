#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Reporter.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Examiner.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

namespace Nerix::FileScanners {

namespace {

/// Collects the steps of a fold, which is retried if memory runs out; they are reported after it has
/// succeeded.
class FoldSteps final : public HashFunctions::StepObserver {
public:
    void onStep(unsigned long long bytes) override { steps.add(static_cast<std::uint32_t>(bytes)); }
    void onReadError(int) noexcept override {} // nothing is read: the list of values is in memory

    StepSizes steps;
};

} // namespace

Reporter::Reporter(ReportQueue& queue, Helpers& helpers, const IHashFunction& function)
    : m_queue(queue), m_helpers(helpers), m_function(function), m_worker(HashWorker::getInstance()) {}

void Reporter::reportFinished() {
    HashWorker::throwIfTerminating(); // also if there is nothing to report
    StepSizes steps;
    QueuedEntry* const front = m_queue.takeFinished(m_finished, steps);
    for (QueuedEntry& entry : m_finished) {
        report(entry);
    }
    m_finished.clear();
    if (front != nullptr && !steps.isEmpty()) {
        reportDirectoriesOf(*front);
        reportSteps(*front, steps);
    }
}

void Reporter::report(QueuedEntry& entry) {
    reportDirectories(entry.listing ? &entry : entry.parent);
    m_depth = entry.depth;
    if (!entry.listing) { // those of a directory have been reported by now
        reportSteps(entry, entry.deliveredSteps);
    }
    if (entry.input && entry.input->path.empty()) {
        entry.input->path = pathOf(entry);
    }
    if (entry.failure) {
        if (entry.parent != nullptr && m_worker.continueWithout(entry.failure)) {
            return;
        }
        std::rethrow_exception(entry.failure);
    }
    if (entry.parent != nullptr && !entry.scanner->accept(*entry.input)) {
        return; // reported by accept, if at all
    }
    if (entry.listing) {
        foldEntries(entry);
    }
    if (entry.readError != 0) {
        m_worker.logReadError(*entry.input, entry.readError);
    }
    m_worker.log(*entry.input, entry.value, entry.facts.get());
    addValue(entry);
}

/// Adds the value to the list of the directory, or makes it the result.
void Reporter::addValue(QueuedEntry& entry) {
    if (entry.parent == nullptr) {
        m_result = entry.value;
        return;
    }
    entry.parent->listing->addValue(entry.value);
}

void Reporter::foldEntries(QueuedEntry& directory) {
    FoldSteps observer;
    m_helpers.retryWithout(
        [&] { directory.value = m_function.apply(directory.value, directory.listing->values); });
    reportSteps(directory, observer.steps);
}

void Reporter::reportDirectoriesOf(QueuedEntry& entry) {
    reportDirectories(entry.parent);
    m_depth = entry.depth;
}

void Reporter::reportDirectories(QueuedEntry* innermost) {
    m_directories.clear();
    for (QueuedEntry* entry = innermost; entry != nullptr && !entry->listing->isReported;
         entry = entry->parent) {
        m_directories.push_back(entry);
    }
    for (; !m_directories.empty(); m_directories.pop_back()) {
        QueuedEntry& directory = *m_directories.back();
        m_depth = directory.depth;
        reportSteps(directory, directory.deliveredSteps);
        directory.listing->isReported = true;
    }
}

void Reporter::reportSteps(QueuedEntry& entry, const StepSizes& steps) {
    for (const StepSizes::Run& run : steps.runs()) {
        for (std::uint32_t step = 0; step != run.count; ++step) {
            reportStep(entry, run.bytes);
        }
    }
}

void Reporter::reportStep(QueuedEntry& entry, unsigned long long bytes) {
    m_worker.log(bytes);
    ++entry.reportedSteps;
}

} // namespace Nerix::FileScanners
