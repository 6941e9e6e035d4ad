#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/QueuedEntry.h"

#include <boost/core/noncopyable.hpp>
#include <boost/intrusive/list.hpp>

#include <condition_variable>
#include <cstddef>
#include <list>
#include <mutex>

namespace Nerix::FileScanners {

/// The entries of a walk that have been taken but not yet reported, in report order: a directory comes after
/// its entries, so the root is last. An entry enters the queue when a thread takes it; until then it is only
/// a name in its directory's listing.
///
///     front
///       a/b  examined, to be reported next
///       a/c  being examined by some thread
///       a    examined, names left: "d", "e"
///       /    examined, names left: "f"
///
/// One thread, the reporter, removes examined entries from the front. It and any number of other threads take
/// names and examine them. An entry outlives all entries before it, so parent pointers stay valid. One mutex
/// guards the order and the states; no file is read, nothing is hashed and nothing is logged while it is
/// held.
class ReportQueue : private boost::noncopyable {
public:
    using Entries = std::list<QueuedEntry>;

    /// Limits the entries in the queue besides the front and the directories that contain it. With this
    /// limit, small files keep the lanes busy while a large one is the front; the entries take up to 7 MiB.
    /// Each directory that contains the front may have an eighth of the limit in the queue even if the limit
    /// is reached, because its entries are the next to be reported: if they waited for room, no entry would
    /// ever be reported to make it.
    static constexpr std::size_t maxEntriesAhead = 16384;

    /// Limits the names in the listings of directories that were examined ahead.
    static constexpr std::size_t maxNamesAhead = 65536;

    /// cores: the number of cores over which the remaining names are spread. Threads beyond that number get
    /// work only while others wait for a disk. maxAhead, maxNames: see the constants.
    explicit ReportQueue(std::size_t cores, std::size_t maxAhead = maxEntriesAhead,
                         std::size_t maxNames = maxNamesAhead)
        : m_cores(cores), m_maxAhead(maxAhead), m_maxNames(maxNames) {}

    /// Puts the root into the empty queue, deferred. `root` must contain only that entry.
    void begin(Entries& root);

    /// What the reporter does next.
    enum class Turn {
        report,       ///< call takeFinished; there is something to report
        examineFront, ///< it was deferred and is now marked as being examined
        takeEntries   ///< there are names to take
    };

    /// Returns what to do next; blocks while there is nothing. Reporter only, after it has reported what it
    /// took.
    Turn next();

    /// Moves up to 64 finished entries from the front to `finished`, which must be empty. If the new front is
    /// being examined, moves its delivered steps to `steps` and returns it; otherwise returns null. After the
    /// root has been taken, the queue is empty. Reporter only.
    QueuedEntry* takeFinished(Entries& finished, StepSizes& steps);

    /// Takes the first remaining name and moves the entry in `unused` into the queue for it. Returns null if
    /// there is none, if the queue is full, if the front is deferred, or if the caller, which already
    /// examines `busy` entries, should leave the remaining names to other threads.
    QueuedEntry* take(Entries& unused, std::size_t busy);

    /// Does the same as take, but blocks until there is an entry, and takes one even if the front is
    /// deferred. Returns null after stop. For a thread, other than the reporter, that examines nothing.
    QueuedEntry* takeOrWait(Entries& unused);

    /// Ends the examination of an entry and adds its remaining steps. Defers the entry if there is no memory for
    /// the steps, or if maxNamesAhead is exceeded.
    void settle(QueuedEntry& entry, QueuedEntry::State state, StepSizes& steps) noexcept;

    /// Adds steps to be reported once the entry is the front, and leaves `steps` empty; changes nothing if
    /// memory runs out. Call it on the thread that examines the entry.
    void deliver(QueuedEntry& entry, StepSizes& steps) noexcept;

    /// Returns the front, which must exist. Reporter only.
    QueuedEntry& front() { return m_entries.front(); }

    /// Makes takeOrWait return null from now on.
    void stop();

private:
    using Open = boost::intrusive::list<QueuedEntry, boost::intrusive::constant_time_size<false>>;

    // Called with the mutex held.
    std::size_t ahead() const;
    void offerNames(QueuedEntry& directory);
    QueuedEntry& takeName(QueuedEntry& directory, Entries& unused);
    QueuedEntry* takeNow(Entries& unused, std::size_t busy);
    bool isFrontDeferred() const;
    bool containsFront(const QueuedEntry& directory) const;
    bool hasRoom(std::size_t divisor) const;
    void wakeHelpers();

    const std::size_t m_cores;
    const std::size_t m_maxAhead;
    const std::size_t m_maxNames;
    std::mutex m_mutex;
    std::condition_variable m_reporterWakes;
    std::condition_variable m_helpersWake;
    std::size_t m_waitingHelpers = 0;
    bool m_isStopped = false;
    Entries m_entries;
    std::size_t m_unreported = 0;      ///< entries that the reporter removed and is reporting
    std::size_t m_namesAhead = 0;      ///< names in the listings of directories examined ahead
    std::size_t m_namesLeft = 0;       ///< names that no thread has taken
    std::size_t m_beingExamined = 0;   ///< entries that a thread examines
    Open m_open;                       ///< being examined, or with names left; in the order of the queue
    QueuedEntry* m_offering = nullptr; ///< first directory in m_open with names left; null if there is none
};

} // namespace Nerix::FileScanners
