#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/ReportQueue.h"

#include <algorithm>
#include <new>

namespace Nerix::FileScanners {

namespace {

using Lock = std::unique_lock<std::mutex>;
using State = QueuedEntry::State;

bool isFinished(const QueuedEntry& entry) {
    return entry.state == State::examined && !entry.hasNamesLeft();
}

bool offersNames(const QueuedEntry& entry) {
    return entry.state == State::examined && entry.hasNamesLeft();
}

void dropWhatWasExamined(QueuedEntry& entry) {
    entry.deliveredSteps = StepSizes();
    entry.listing.reset();
    entry.input.reset();
    entry.facts.reset();
    entry.readError = 0;
    entry.failure = nullptr;
}

} // namespace

void ReportQueue::begin(Entries& root) {
    const Lock lock(m_mutex);
    root.front().place = root.begin();
    root.front().state = State::deferred;
    m_entries.splice(m_entries.end(), root);
}

ReportQueue::Turn ReportQueue::next() {
    Lock lock(m_mutex);
    m_unreported = 0;
    wakeHelpers();
    for (;;) {
        QueuedEntry& front = m_entries.front();
        if (isFinished(front) || (front.state == State::beingExamined && !front.deliveredSteps.isEmpty())) {
            return Turn::report;
        }
        if (front.state == State::deferred) {
            front.state = State::beingExamined;
            front.isAhead = false;
            ++m_beingExamined;
            m_open.push_front(front);
            return Turn::examineFront;
        }
        if (hasRoom(1)) {
            return Turn::takeEntries;
        }
        m_reporterWakes.wait(lock);
    }
}

QueuedEntry* ReportQueue::takeFinished(Entries& finished, StepSizes& steps) {
    // Batches are small, because their entries count against the limit until the whole batch is reported.
    constexpr std::size_t maxAtOnce = 64;
    const Lock lock(m_mutex);
    while (!m_entries.empty() && isFinished(m_entries.front()) && finished.size() < maxAtOnce) {
        QueuedEntry& entry = m_entries.front();
        if (entry.isAhead && entry.listing) {
            m_namesAhead -= entry.listing->names.size();
        }
        if (entry.parent != nullptr) {
            --entry.parent->listing->inQueue;
        }
        finished.splice(finished.end(), m_entries, m_entries.begin());
    }
    m_unreported = finished.size();
    wakeHelpers();
    if (m_entries.empty() || m_entries.front().state != State::beingExamined) {
        return nullptr;
    }
    steps.take(m_entries.front().deliveredSteps);
    return &m_entries.front();
}

QueuedEntry* ReportQueue::take(Entries& unused, std::size_t busy) {
    const Lock lock(m_mutex);
    return isFrontDeferred() ? nullptr : takeNow(unused, busy);
}

QueuedEntry* ReportQueue::takeOrWait(Entries& unused) {
    Lock lock(m_mutex);
    while (!m_isStopped) {
        if (QueuedEntry* const entry = takeNow(unused, 0)) {
            return entry;
        }
        ++m_waitingHelpers;
        m_helpersWake.wait(lock);
        --m_waitingHelpers;
    }
    return nullptr;
}

void ReportQueue::settle(QueuedEntry& entry, State state, StepSizes& steps) noexcept {
    const Lock lock(m_mutex);
    entry.state = state;
    try {
        entry.deliveredSteps.take(steps);
    } catch (...) { // no memory for them
        entry.state = State::deferred;
    }
    if (entry.state == State::examined && entry.isAhead && entry.listing) {
        m_namesAhead += entry.listing->names.size();
        if (m_namesAhead > m_maxNames) {
            m_namesAhead -= entry.listing->names.size();
            entry.state = State::deferred;
        }
    }
    if (entry.state == State::deferred) {
        dropWhatWasExamined(entry);
    }
    --m_beingExamined;
    if (offersNames(entry)) {
        offerNames(entry);
    } else {
        m_open.erase(m_open.iterator_to(entry));
    }
    if (offersNames(entry) || &entry == &m_entries.front()) {
        m_reporterWakes.notify_one();
    }
}

void ReportQueue::deliver(QueuedEntry& entry, StepSizes& steps) noexcept {
    const Lock lock(m_mutex);
    try {
        entry.deliveredSteps.take(steps);
    } catch (const std::bad_alloc&) {
        return;
    }
    if (&entry == &m_entries.front()) {
        m_reporterWakes.notify_one();
    }
}

void ReportQueue::stop() {
    const Lock lock(m_mutex);
    m_isStopped = true;
    m_helpersWake.notify_all();
}

void ReportQueue::wakeHelpers() {
    // Not for every entry removed, because waking a thread costs more than most entries.
    if (m_waitingHelpers != 0 && hasRoom(2)) {
        m_helpersWake.notify_all();
    }
}

QueuedEntry* ReportQueue::takeNow(Entries& unused, std::size_t busy) {
    // The work is spread over the cores, so that the first thread does not take all of a few large files.
    const std::size_t share = (m_beingExamined + m_namesLeft + m_cores - 1) / m_cores;
    return busy < std::max<std::size_t>(share, 1) && hasRoom(1) ? &takeName(*m_offering, unused) : nullptr;
}

QueuedEntry& ReportQueue::takeName(QueuedEntry& directory, Entries& unused) {
    QueuedEntry& entry = unused.front();
    entry.place = unused.begin();
    entry.parent = &directory;
    entry.depth = directory.depth + 1;
    entry.nameIndex = directory.listing->next++;
    entry.isAhead = true;
    ++directory.listing->inQueue;
    --m_namesLeft;
    ++m_beingExamined;
    m_entries.splice(directory.place, unused, unused.begin());
    m_open.insert(m_open.iterator_to(directory), entry);
    if (!directory.hasNamesLeft()) {
        const auto next =
            std::find_if(m_open.erase(m_open.iterator_to(directory)), m_open.end(), offersNames);
        m_offering = next == m_open.end() ? nullptr : &*next;
    }
    return entry;
}

void ReportQueue::offerNames(QueuedEntry& directory) {
    m_namesLeft += directory.listing->names.size();
    m_offering = &*std::find_if(m_open.begin(), m_open.end(), offersNames);
    if (m_waitingHelpers != 0) {
        m_helpersWake.notify_all();
    }
}

bool ReportQueue::isFrontDeferred() const {
    return !m_entries.empty() && m_entries.front().state == State::deferred;
}

bool ReportQueue::containsFront(const QueuedEntry& directory) const {
    const QueuedEntry* entry = &m_entries.front();
    while (entry != nullptr && entry != &directory) {
        entry = entry->parent;
    }
    return entry != nullptr;
}

/// Returns true if there is a name to take and less than 1/`divisor` of the room is in use: of the whole
/// room, or, if the directory contains the front, of its own eighth, which has room for at least one entry.
bool ReportQueue::hasRoom(std::size_t divisor) const {
    if (m_offering == nullptr) {
        return false;
    }
    const std::size_t inQueue = m_offering->listing->inQueue;
    return ahead() * divisor < m_maxAhead ||
           ((inQueue == 0 || inQueue * divisor < m_maxAhead / 8) && containsFront(*m_offering));
}

std::size_t ReportQueue::ahead() const {
    return m_entries.empty() ? 0 : m_entries.size() + m_unreported - (m_entries.front().depth + 1);
}

} // namespace Nerix::FileScanners
