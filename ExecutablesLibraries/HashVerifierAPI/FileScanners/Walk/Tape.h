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

/// The sizes of digest steps in their order; equal ones in a row are counted.
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

/// What a directory adds to its cell.
struct Listing {
    explicit Listing(Names itsNames) : names(std::move(itsNames)) {}

    const Names names;
    std::size_t next = 0;    ///< the first name that nobody has taken; guarded by the tape
    bool isReported = false; ///< whether its own steps were; the reporter's
    std::string values;      ///< of the entries reported so far, a line each; the reporter's
};

/// One entry between being taken and being reported. While it is in hand, its taker alone uses what is not
/// marked otherwise; after that the reporter does.
struct Cell : boost::intrusive::list_base_hook<> {
    enum class State {
        InHand,
        Settled, ///< examined, or with a failure that is the entry's own
        Left     ///< not examined ahead for lack of resources: the reporter does it when the cell is in front
    };

    // Guarded by the tape.
    State state = State::InHand;
    bool isAhead = false; ///< taken while it was not in front
    Steps steps;          ///< taken ahead and not reported yet

    // Set when it is taken.
    std::list<Cell>::iterator place;
    Cell* parent = nullptr; ///< the directory that it stands in; null for the root
    std::size_t depth = 0;  ///< how many directories it stands in
    std::size_t name = 0;   ///< its number among the parent's names

    std::uint64_t reportedSteps = 0; ///< the reporter's
    std::optional<FileInput> entry;
    const IFileScanner* scanner = nullptr;
    IFileScanner::hash_t value = 0;
    std::unique_ptr<Listing> listing; ///< a directory's
    int readError = 0;                ///< the errno that ended a file's content early; 0 for none
    std::exception_ptr failure;       ///< why the entry could not be examined; null when it was
};

/// The entries of a walk that are taken and not yet reported, in the order of the reports: a directory's cell
/// stands behind those of its entries, so the root's is the last. An entry gets its cell when a thread takes
/// it; until then it is a name in its directory's listing.
///
///     front                                     in hand: by a helper, or the reporter
///       a/b  settled, to be reported next       names left: a has "d", "e"; the root has "f"
///       a/c  in hand
///       a    settled, names left
///       /    settled, names left
///
/// One thread, the reporter, takes settled cells off the front, and examines what nobody has taken there;
/// others, the helpers, take names further ahead. A cell outlives those before it: its taker may use its
/// parent. Everything happens under one mutex, and nothing slow does: no system call, hash or record.
class Tape : private boost::noncopyable {
public:
    using Cells = std::list<Cell>;

    /// mostAhead: how many cells there may be besides the front's own directories.
    explicit Tape(std::size_t mostAhead) : m_mostAhead(mostAhead) {}

    /// What the reporter does next: first report these, then examine the cell, if any.
    struct Turn {
        Cell* cell = nullptr;
        bool isAhead = false; ///< the cell is not in front, so nothing of it may be reported yet
    };

    /// Puts the root's cell on the empty tape, for the reporter.
    void begin(Cells& root);

    /// For the reporter: moves finished cells from the front to reported, which is empty, some at a time, and
    /// takes the next to examine; blank holds the cell for it. Waits while there is neither, and no step to
    /// report of the front that another thread has in hand.
    Turn next(Cells& reported, Cells& blank);

    /// For the reporter in the middle of a cell: as next, but takes none and never waits.
    void takeFinished(Cells& reported);

    /// For a helper: takes a name ahead. Waits while there is none, or enough is ahead; null once stopped.
    Cell* takeAhead(Cells& blank);

    /// Hands a cell back with the rest of its steps. When there is no room for them or its names, it is Left.
    void settle(Cell& cell, Cell::State state, Steps& steps) noexcept;

    /// For the taker of a cell: steps that may be reported once the cell is in front. Leaves steps empty.
    void addSteps(Cell& cell, Steps& steps);

    /// For the reporter: the front, if another thread has it in hand, and its steps; else null.
    Cell* awaited(Steps& steps);

    /// No helper takes a cell any more.
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

    const std::size_t m_mostAhead;
    std::mutex m_mutex;
    std::condition_variable m_reporterWakes;
    std::condition_variable m_helpersWake;
    std::size_t m_waitingHelpers = 0;
    bool m_isStopped = false;
    Cells m_cells;
    std::size_t m_unreported = 0; ///< how many the reporter took off and may not have reported yet
    std::size_t m_namesAhead = 0; ///< of listings that were made ahead and are still there
    Open m_open;                  ///< in hand, or with names left; in the order of the tape
};

} // namespace Nerix::FileScanners
