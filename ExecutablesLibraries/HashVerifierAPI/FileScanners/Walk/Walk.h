#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Examiner.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Helpers.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/ReportQueue.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Reporter.h"

#include <boost/core/noncopyable.hpp>

#include <memory>

namespace Nerix::FileScanners {

/// Folds a directory and everything below it. Any thread may examine an entry (Examiner.h), because each
/// value starts from 0. Only the worker's thread reports entries (Reporter.h), in the order of ReportQueue.h.
/// A failure is stored with its entry and takes effect when the entry is reported. An entry that could not be
/// examined ahead, for example because memory or file descriptors ran out, is deferred: the worker examines
/// it as the front. If the worker runs out of them as well, it stops the helpers, which may hold them, and
/// examines the entry once more. The outcome therefore does not depend on the number of threads.
///
/// A deferred entry is examined again from its status on, so if it was replaced after it was deferred, the
/// replacement is hashed.
class Walk : private boost::noncopyable {
public:
    /// The source position in the context line that a failure gets for each directory level.
    struct Place {
        const char* function;
        const char* file;
        int line;
    };

    /// directory: the scanner of directories. value: the value with which the root's steps begin. All
    /// references must outlive the object.
    Walk(const IFileScanner& directory, const IHashFunction& function, Place place, const FileInput& root,
         IFileScanner::hash_t value);
    ~Walk();

    /// Returns the value after the root and everything below it was folded. Call it once, on the worker's
    /// thread. Unless RunOptions::onUnreadable is set, the first failure ends the walk. It is logged at ERR
    /// and rethrown with one context line per enclosing directory, innermost first.
    IFileScanner::hash_t run();

private:
    class FrontSteps;
    class QueueSupply;
    class WorkerSupply;
    class HelperSupply;

    void takeTurn();
    void examineAhead();
    void examineFront();
    void examine(QueuedEntry& entry);
    void help();
    [[noreturn]] void passOn() const;

    const WalkScope m_scope;
    const Place m_place;
    const IFileScanner::hash_t m_rootValue;
    const ThreadPlan m_plan;
    ReportQueue m_queue;
    Helpers m_helpers;
    Reporter m_reporter;
    std::unique_ptr<WorkerSupply> m_supply;
    std::unique_ptr<Examiner> m_examiner; ///< of the worker's thread
};

} // namespace Nerix::FileScanners
