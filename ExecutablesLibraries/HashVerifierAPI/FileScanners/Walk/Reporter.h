#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Helpers.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/ReportQueue.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace Nerix {
class HashWorker;
}

namespace Nerix::FileScanners {

/// Reports entries to the HashWorker in the order of the queue: their steps, one by one, and their values.
/// Used only on the worker's thread. Each exception ends the walk: the failure of an entry, VConfException if
/// progress cannot be published, GenericException if a signal ends the process.
class Reporter : private boost::noncopyable {
public:
    using hash_t = IFileScanner::hash_t;

    /// All arguments must outlive the object.
    Reporter(ReportQueue& queue, Helpers& helpers, const IHashFunction& function);

    /// Reports finished entries from the front of the queue, and then the delivered steps of the new front.
    void reportFinished();

    /// Reports the steps that have not been reported of all directories that contain the entry.
    void reportDirectoriesOf(QueuedEntry& entry);

    /// Reports one step of the entry.
    void reportStep(QueuedEntry& entry, unsigned long long bytes);

    /// Returns the value of the root, or nullopt until it has been reported.
    const std::optional<hash_t>& result() const { return m_result; }

    /// Returns the depth below the root of the entry that was last reported or whose report failed.
    std::size_t depth() const { return m_depth; }

private:
    void report(QueuedEntry& entry);
    void reportSteps(QueuedEntry& entry, const StepSizes& steps);
    void foldEntries(QueuedEntry& directory);
    void addValue(QueuedEntry& entry);
    void reportDirectories(QueuedEntry* innermost);

    ReportQueue& m_queue;
    Helpers& m_helpers;
    const IHashFunction& m_function;
    HashWorker& m_worker;
    ReportQueue::Entries m_finished;
    std::vector<QueuedEntry*> m_directories; ///< whose steps are to be reported, outermost last
    std::size_t m_depth = 0;
    std::optional<hash_t> m_result;
};

} // namespace Nerix::FileScanners
