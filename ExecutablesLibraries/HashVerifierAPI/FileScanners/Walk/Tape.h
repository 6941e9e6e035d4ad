#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Names.h"

#include <boost/core/noncopyable.hpp>
#include <boost/intrusive/list.hpp>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Nerix::FileScanners {

/// Sizes of digest steps in order, run-length encoded.
class Steps {
public:
    struct Run {
        unsigned long long bytes;
        std::uint64_t count;
    };

    void add(Run run);
    void take(Steps& others); ///< appends them and leaves others empty
    bool isEmpty() const { return m_runs.empty(); }
    const std::vector<Run>& runs() const { return m_runs; }

private:
    std::vector<Run> m_runs;
};

/// The extra state of a directory's cell.
struct Listing {
    explicit Listing(Names itsNames) : names(std::move(itsNames)) {}

    const Names names;
    std::size_t next = 0; ///< the first name that nobody has taken; guarded by the tape
    bool isReported =
        false;          ///< whether the directory's own steps have been reported; used only by the reporter
    std::string values; ///< values of the entries reported so far, one per line; used only by the reporter
};

/// An entry that has been taken but not yet reported. Members not marked otherwise belong to the thread that
/// took it while it is in hand, and to the reporter after that.
struct Cell : boost::intrusive::list_base_hook<> {
    enum class State {
        InHand,
        Settled, ///< examined, or with a failure that is the entry's own
        Left     ///< not examined ahead for lack of resources: the reporter does it when the cell is in front
    };

    // Guarded by the tape.
    State state = State::InHand;
    bool isAhead = false; ///< taken before it reached the front
    Steps steps;          ///< taken ahead and not reported yet

    // Set when it is taken.
    std::list<Cell>::iterator place;
    Cell* parent = nullptr; ///< the containing directory; null for the root
    std::size_t depth = 0;  ///< depth below the root, which is 0
    std::size_t name = 0;   ///< its number among the parent's names

    std::uint64_t reportedSteps = 0; ///< the reporter's
    std::optional<FileInput> entry;
    const IFileScanner* scanner = nullptr;
    IFileScanner::hash_t value = 0;
    std::unique_ptr<Listing> listing; ///< a directory's
    int readError = 0;                ///< the errno that ended a file's content early; 0 for none
    std::exception_ptr failure;       ///< why the entry could not be examined; null when it was
};

/// The entries of a walk that have been taken but not yet reported, in report order: a directory comes after
/// its entries, so the root is last. An entry gets a cell when a thread takes it; until then it is only a
/// name in its directory's listing.
///
///     front                                     in hand: by a helper, or the reporter
///       a/b  settled, to be reported next       names left: a has "d", "e"; the root has "f"
///       a/c  in hand
///       a    settled, names left
///       /    settled, names left
///
/// One thread, the reporter, removes settled cells from the front and examines the front entry if nobody else
/// has taken it. Other threads, the helpers, take names further ahead. A cell outlives all cells before it,
/// so parent pointers stay valid. One mutex guards everything; no system call, hashing or logging happens
/// while it is held.
class Tape : private boost::noncopyable {
public:
    using Cells = std::list<Cell>;

    /// maxAhead: the maximum number of cells, not counting the directories that contain the front.
    explicit Tape(std::size_t maxAhead) : m_maxAhead(maxAhead) {}

    /// What the reporter does next: first report these, then examine the cell, if any.
    struct Turn {
        Cell* cell = nullptr;
        bool isAhead = false; ///< the cell is not in front, so nothing of it may be reported yet
    };

    /// Puts the root's cell on the empty tape, for the reporter.
    void begin(Cells& root);

    /// Reporter only. Moves finished cells from the front to `reported` (which must be empty), at most 64 at
    /// a time, and takes the next entry to examine, using the cell in `blank`. Blocks until there is
    /// something to report or to examine, or until a helper has delivered steps for the front.
    Turn next(Cells& reported, Cells& blank);

    /// Reporter only, while examining an entry: like next, but takes no entry and never blocks.
    void takeFinished(Cells& reported);

    /// Helpers only. Takes the next name ahead; blocks while there is none or the limit is reached. Returns
    /// null once stopped.
    Cell* takeAhead(Cells& blank);

    /// Returns a cell with its remaining steps. If there is no memory for the steps, or too many names are
    /// ahead, the cell becomes Left.
    void settle(Cell& cell, Cell::State state, Steps& steps) noexcept;

    /// Taker only. Adds steps to be reported once the cell is at the front. Leaves `steps` empty.
    void addSteps(Cell& cell, Steps& steps);

    /// Reporter only. If another thread holds the front cell, returns it and moves its steps to `steps`;
    /// otherwise returns null.
    Cell* awaited(Steps& steps);

    /// Makes takeAhead return null from now on.
    void stop();

private:
    using Open = boost::intrusive::list<Cell, boost::intrusive::constant_time_size<false>>;

    // All under the mutex.
    std::size_t ahead() const;
    Cell* openDirectory();
    Cell& take(Cell& directory, Cells& blank);
    Cell* takeAheadNow(Cells& blank);
    Turn turn(Cells& blank);
    void removeFinished(Cells& reported);
    void wakeHelpers();

    const std::size_t m_maxAhead;
    std::mutex m_mutex;
    std::condition_variable m_reporterWakes;
    std::condition_variable m_helpersWake;
    std::size_t m_waitingHelpers = 0;
    bool m_isStopped = false;
    Cells m_cells;
    std::size_t m_unreported = 0; ///< cells removed by the reporter in the current batch
    std::size_t m_namesAhead = 0; ///< names in listings read ahead
    Open m_open;                  ///< in hand, or with names left; in the order of the tape
};

} // namespace Nerix::FileScanners
