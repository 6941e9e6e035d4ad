#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Tape.h"

#include <atomic>
#include <exception>
#include <vector>

namespace boost {
class thread;
}

namespace Nerix {
class HashWorker;
}

namespace Nerix::FileScanners {

/// Folds a directory and everything below it. Entries are independent of each other, as each value starts
/// from 0: other cores examine them ahead, while the calling thread, the reporter, alone reports, in the
/// order in which it would have come to them by itself. A failure of a helper is kept with its entry, and the
/// reporter meets it where one thread would. Only a lack of memory or descriptors, which the helpers
/// themselves may have caused, leaves the entry to the reporter, who tries once more without them.
///
/// Tape.h explains who has which entry when. The helpers end with the walk, however it ends. On one core, or
/// if the custom parameter "hashVerifierThreads" is 1, there are no helpers; the same code then examines
/// every entry in its turn.
class Walk : private boost::noncopyable {
public:
    /// The source position that a failure's context line gives for each directory level.
    struct Place {
        const char* function;
        const char* file;
        int line;
    };

    /// directory: the scanner of directories.
    Walk(const IFileScanner& directory, const IHashFunction& function, Place place);
    ~Walk();

    /// The value after root and everything below it was folded into value; to be called once, by the
    /// HashWorker's thread. The first failure ends the walk: it is logged at ERR and rethrown with one
    /// context line per enclosing directory, innermost first.
    IFileScanner::hash_t run(const FileInput& root, IFileScanner::hash_t value);

private:
    using hash_t = IFileScanner::hash_t;
    class FrontSteps;
    class AheadSteps;
    class FoldSteps;

    void step();
    void report(Cell& cell);
    void foldEntries(Cell& directory);
    void reportDirectories(Cell* innermost);
    void reportSteps(Cell& cell, const Steps& steps);
    void reportProgress();
    bool reportMeanwhile() noexcept;

    void examine(Cell& cell);
    void examineInFront(Cell& cell);
    void examineAhead(Cell& cell, bool isReporter);

    void startHelpers();
    void stopHelpers() noexcept;

    /// Takes the action; when it lacks resources, once more without the helpers, which may hold them.
    template <class Action>
    void retryAlone(Action action);

    void help();
    [[noreturn]] void passOn() const;

    const IFileScanner& m_directory;
    const IHashFunction& m_function;
    const Place m_place;
    HashWorker& m_worker;
    const dev_t m_rootDevice;
    const std::size_t m_helperCount;
    Tape m_tape;
    std::atomic<bool> m_isStopping{false};

    const FileInput* m_root = nullptr;
    hash_t m_rootValue = 0;

    // The reporter's.
    std::vector<Cell*> m_unreported; ///< directories whose own steps come before those of what they contain
    Tape::Cells m_reported;
    Tape::Cells m_blank;
    std::vector<std::unique_ptr<boost::thread>> m_helpers;
    std::size_t m_depth = 0;    ///< depth of the entry being processed, for failure reports
    bool m_isReporting = false; ///< true while reporting: a failure then must not be retried
    std::exception_ptr
        m_failure; ///< thrown by a report made while examining an entry ahead; rethrown by step()
    std::optional<IFileScanner::hash_t> m_result;
};

} // namespace Nerix::FileScanners
