#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Examiner.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Helpers.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/ReportQueue.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Reporter.h"

#include <boost/core/noncopyable.hpp>

#include <memory>

namespace Nerix::FileScanners {

/// Folds a directory and everything below it. Entries are independent of each other, as each value starts
/// from 0. So any thread may examine them, several at a time (Examiner.h); the worker's thread alone reports
/// them, in the order in which one thread that examines one entry at a time would come to them
/// (ReportQueue.h, Reporter.h). A failure is stored with its entry, and the worker meets it when it reports
/// the entry. An entry that could not be examined ahead, for example for lack of memory or file descriptors,
/// which the helpers may hold, is deferred: the worker examines it by itself when it is in front, and if it
/// lacks something, too, once more without the helpers. So the outcome does not depend on the number of
/// threads.
///
/// A deferred entry is examined anew, beginning with its status: if it was replaced meanwhile, for example
/// while the walk waited for a lease, what replaced it counts.
class Walk : private boost::noncopyable {
public:
    /// The source position that a failure's context line gives for each directory level.
    struct Place {
        const char* function;
        const char* file;
        int line;
    };

    /// directory: the scanner of directories. root: the walk's root, of which value is the old value. All
    /// references must outlive the object.
    Walk(const IFileScanner& directory, const IHashFunction& function, Place place, const FileInput& root,
         IFileScanner::hash_t value);
    ~Walk();

    /// Returns the value after the root and everything below it was folded. Call it once, on the worker's
    /// thread. The first failure ends the walk, unless the run goes on without what cannot be read
    /// (RunOptions.h). It is logged at ERR and rethrown with one context line per enclosing directory,
    /// innermost first.
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
