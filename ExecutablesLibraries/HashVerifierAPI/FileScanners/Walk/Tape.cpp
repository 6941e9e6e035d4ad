#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Tape.h"

#include <utility>

namespace Nerix::FileScanners {

namespace {

using Lock = std::unique_lock<std::mutex>;

bool hasNamesLeft(const Cell& cell) {
    return cell.listing && cell.listing->next < cell.listing->names.size();
}

bool isFinished(const Cell& cell) {
    return cell.state == Cell::State::Settled && !hasNamesLeft(cell);
}

void dropWhatWasExamined(Cell& cell) {
    cell.steps = Steps();
    cell.listing.reset();
    cell.entry.reset();
    cell.readError = 0;
    cell.failure = nullptr;
}

} // namespace

void Steps::add(Run run) {
    if (!m_runs.empty() && m_runs.back().bytes == run.bytes) {
        m_runs.back().count += run.count;
    } else {
        m_runs.push_back(run);
    }
}

void Steps::take(Steps& others) {
    if (m_runs.empty()) {
        m_runs.swap(others.m_runs);
        return;
    }
    for (const Run& run : others.m_runs) {
        add(run);
    }
    others.m_runs.clear();
}

void Tape::begin(Cells& root) {
    const Lock lock(m_mutex);
    root.front().place = root.begin();
    root.front().state = Cell::State::Left;
    m_cells.splice(m_cells.end(), root);
}

Tape::Turn Tape::next(Cells& reported, Cells& blank) {
    Lock lock(m_mutex);
    for (;;) {
        removeFinished(reported);
        if (m_cells.empty()) {
            return {};
        }
        wakeHelpers();
        const Turn found = turn(blank);
        if (found.cell != nullptr || !reported.empty() || !m_cells.front().steps.isEmpty()) {
            return found;
        }
        m_reporterWakes.wait(lock);
    }
}

void Tape::takeFinished(Cells& reported) {
    const Lock lock(m_mutex);
    removeFinished(reported);
    wakeHelpers();
}

Cell* Tape::takeAhead(Cells& blank) {
    Lock lock(m_mutex);
    while (!m_isStopped) {
        if (Cell* const cell = takeAheadNow(blank)) {
            return cell;
        }
        ++m_waitingHelpers;
        m_helpersWake.wait(lock);
        --m_waitingHelpers;
    }
    return nullptr;
}

void Tape::settle(Cell& cell, Cell::State state, Steps& steps) noexcept {
    constexpr std::size_t maxNamesAhead = 65536;
    const Lock lock(m_mutex);
    cell.state = state;
    try {
        cell.steps.take(steps);
    } catch (...) { // no memory for them
        cell.state = Cell::State::Left;
    }
    if (cell.state == Cell::State::Settled && cell.isAhead && cell.listing) {
        m_namesAhead += cell.listing->names.size();
        if (m_namesAhead > maxNamesAhead) {
            m_namesAhead -= cell.listing->names.size();
            cell.state = Cell::State::Left;
        }
    }
    if (cell.state == Cell::State::Left) {
        dropWhatWasExamined(cell);
    }
    const bool offersNames = hasNamesLeft(cell);
    if (!offersNames) {
        m_open.erase(m_open.iterator_to(cell));
    } else if (m_waitingHelpers != 0) {
        m_helpersWake.notify_all();
    }
    if (offersNames || &cell == &m_cells.front()) {
        m_reporterWakes.notify_one();
    }
}

void Tape::addSteps(Cell& cell, Steps& steps) {
    const Lock lock(m_mutex);
    cell.steps.take(steps);
    if (&cell == &m_cells.front()) {
        m_reporterWakes.notify_one();
    }
}

Cell* Tape::awaited(Steps& steps) {
    const Lock lock(m_mutex);
    Cell& front = m_cells.front();
    if (front.state != Cell::State::InHand) {
        return nullptr;
    }
    steps.take(front.steps);
    return &front;
}

void Tape::stop() {
    const Lock lock(m_mutex);
    m_isStopped = true;
    m_helpersWake.notify_all();
}

void Tape::removeFinished(Cells& reported) {
    // In small batches: they count against the limit until the whole batch is reported.
    constexpr std::size_t maxAtOnce = 64;
    while (!m_cells.empty() && isFinished(m_cells.front()) && reported.size() < maxAtOnce) {
        Cell& cell = m_cells.front();
        if (cell.isAhead && cell.listing) {
            m_namesAhead -= cell.listing->names.size();
        }
        reported.splice(reported.end(), m_cells, m_cells.begin());
    }
    m_unreported = reported.size();
}

void Tape::wakeHelpers() {
    // Not for every cell removed: waking a thread costs more than most entries.
    if (m_waitingHelpers != 0 && ahead() <= m_maxAhead / 2 && openDirectory() != nullptr) {
        m_helpersWake.notify_all();
    }
}

Tape::Turn Tape::turn(Cells& blank) {
    Cell& front = m_cells.front();
    switch (front.state) {
    case Cell::State::Settled:
        return isFinished(front) ? Turn{} : Turn{&take(front, blank), false};
    case Cell::State::Left:
        front.state = Cell::State::InHand;
        front.isAhead = false;
        m_open.push_front(front);
        return {&front, false};
    case Cell::State::InHand:
        break;
    }
    return {takeAheadNow(blank), true};
}

Cell* Tape::takeAheadNow(Cells& blank) {
    Cell* const directory = ahead() < m_maxAhead ? openDirectory() : nullptr;
    if (directory == nullptr) {
        return nullptr;
    }
    Cell& cell = take(*directory, blank);
    cell.isAhead = true;
    return &cell;
}

Cell& Tape::take(Cell& directory, Cells& blank) {
    Cell& cell = blank.front();
    cell.place = blank.begin();
    cell.parent = &directory;
    cell.depth = directory.depth + 1;
    cell.name = directory.listing->next++;
    m_cells.splice(directory.place, blank, blank.begin());
    m_open.insert(m_open.iterator_to(directory), cell);
    if (!hasNamesLeft(directory)) {
        m_open.erase(m_open.iterator_to(directory));
    }
    return cell;
}

Cell* Tape::openDirectory() {
    for (Cell& cell : m_open) {
        if (cell.state == Cell::State::Settled) {
            return &cell;
        }
    }
    return nullptr;
}

std::size_t Tape::ahead() const {
    return m_cells.empty() ? 0 : m_cells.size() + m_unreported - (m_cells.front().depth + 1);
}

} // namespace Nerix::FileScanners
