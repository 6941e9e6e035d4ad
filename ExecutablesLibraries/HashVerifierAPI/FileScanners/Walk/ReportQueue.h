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
/// its entries, so the root is last. An entry gets into the queue when a thread takes it; until then it is
/// only a name in its directory's listing.
///
///     front
///       a/b  examined, to be reported next
///       a/c  being examined by some thread
///       a    examined, names left: "d", "e"
///       /    examined, names left: "f"
///
/// One thread, the reporter, removes examined entries from the front. It and any number of other threads take
/// names and examine them. An entry outlives all entries before it, so parent pointers stay valid. One mutex
/// guards the order and the states; files, hashing and the log are not touched while it is held.
class ReportQueue : private boost::noncopyable {
public:
    using Entries = std::list<QueuedEntry>;

    /// Besides the front and the directories that contain it. So many small files keep the lanes busy while a
    /// large one is in front; they take up to 7 MiB. A directory that contains the front may always have an
    /// eighth of it in the queue: what comes next must not wait for room that only reporting it can make.
    static constexpr std::size_t maxEntriesAhead = 16384;

    /// In the listings of directories that were examined ahead.
    static constexpr std::size_t maxNamesAhead = 65536;

    /// cores: among how many threads the names that are left are shared; further threads only help while
    /// those wait for a disk. maxAhead: how many entries may be in the queue besides the front and the
    /// directories that contain it.
    explicit ReportQueue(std::size_t cores, std::size_t maxAhead = maxEntriesAhead)
        : m_cores(cores), m_maxAhead(maxAhead) {}

    /// Puts the root into the empty queue, deferred. `root` holds that entry alone.
    void begin(Entries& root);

    /// What the reporter does next.
    enum class Turn {
        report,       ///< something: takeFinished
        examineFront, ///< it was deferred, and now is being examined by the reporter
        takeEntries   ///< there are names to take
    };

    /// Reporter only, after it has reported what it took. Blocks while there is nothing to do.
    Turn next();

    /// Reporter only. Moves up to 64 finished entries from the front to `finished`, which must be empty. If
    /// the entry that is then in front is being examined, returns it, and moves the steps that were delivered
    /// of it to `steps`; otherwise returns null. The queue is empty after the root.
    QueuedEntry* takeFinished(Entries& finished, StepSizes& steps);

    /// Takes the first name that no thread has taken, for which it uses the entry in `unused`. Returns null
    /// if there is none, if the queue is full, if the front is deferred, or if the caller, which examines
    /// `busy` entries already, should leave the names that there are to other threads.
    QueuedEntry* take(Entries& unused, std::size_t busy);

    /// For a thread other than the reporter that examines nothing: like take, but blocks until there is an
    /// entry, and takes one even if the front is deferred. Returns null after stop.
    QueuedEntry* takeOrWait(Entries& unused);

    /// Ends the examination of an entry, with its remaining steps. If there is no memory for the steps, or
    /// too many names are ahead, the entry becomes deferred.
    void settle(QueuedEntry& entry, QueuedEntry::State state, StepSizes& steps) noexcept;

    /// For the thread that examines the entry. Adds steps to be reported once the entry is in front, and
    /// leaves `steps` empty; if there is no memory for them, changes nothing.
    void deliver(QueuedEntry& entry, StepSizes& steps) noexcept;

    /// Returns the front, which must exist. Reporter only.
    QueuedEntry& front() { return m_entries.front(); }

    /// Makes takeOrWait return null from now on.
    void stop();

private:
    using Open = boost::intrusive::list<QueuedEntry, boost::intrusive::constant_time_size<false>>;

    // All under the mutex.
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
    std::mutex m_mutex;
    std::condition_variable m_reporterWakes;
    std::condition_variable m_helpersWake;
    std::size_t m_waitingHelpers = 0;
    bool m_isStopped = false;
    Entries m_entries;
    std::size_t m_unreported = 0;    ///< entries that the reporter removed and is reporting
    std::size_t m_namesAhead = 0;    ///< names in listings read ahead
    std::size_t m_namesLeft = 0;     ///< names that no thread has taken
    std::size_t m_beingExamined = 0; ///< entries
    Open m_open;                     ///< being examined, or with names left; in the order of the queue
    QueuedEntry* m_offering =
        nullptr; ///< the first directory in m_open that has names left; null if none has
};

} // namespace Nerix::FileScanners
