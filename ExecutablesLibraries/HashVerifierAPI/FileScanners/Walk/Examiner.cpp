#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Examiner.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FactSteps.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileScanners.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/LackOfResources.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"

#include <string_view>
#include <utility>

namespace Nerix::FileScanners {

namespace {

using State = QueuedEntry::State;

/// Ignores steps and read errors, which the examiner records itself. Stops reading if the walk ends.
class Observer final : public HashFunctions::StepObserver {
public:
    explicit Observer(EntrySupply& supply) : m_supply(supply) {}
    void onStep(unsigned long long) override {}
    void onReadError(int) noexcept override {}
    bool shouldStop() noexcept override { return m_supply.shouldStop(); }

private:
    EntrySupply& m_supply;
};

} // namespace

struct Examiner::Lane {
    explicit Lane(std::size_t bufferSize) : buffer(bufferSize) {}

    QueuedEntry* entry = nullptr;          ///< null if the lane is idle
    std::optional<EntryTexts> texts;       ///< of the entry
    StepSizes steps;                       ///< not yet delivered
    unsigned long long undelivered = 0;    ///< bytes of these steps
    unsigned int stepLength = 0;           ///< of the step in progress
    IHashFunction::hash_t* fact = nullptr; ///< computed by the step in progress; null if it is for the entry
    IHashFunction::hash_t value = 0;       ///< the entry's value during a step for a fact
    EntryTexts::Buffer buffer;
};

Examiner::Examiner(EntrySupply& supply, const WalkScope& scope)
    : m_supply(supply), m_scope(scope), m_laneCount(scope.function.lanes()) {
    // Many lanes share the processor's cache; with a single one, a large buffer saves system calls.
    const std::size_t bufferSize = m_laneCount == 1 ? 131072 : 32768;
    for (std::size_t index = 0; index != m_laneCount; ++index) {
        m_lanes.push_back(std::make_unique<Lane>(bufferSize));
    }
}

Examiner::~Examiner() = default;

void Examiner::run() noexcept {
    const Observer observer(m_supply);
    try {
        m_scope.function.applyChains(*this);
    } catch (...) { // NOLINT(bugprone-empty-catch): a failure of the crypto library; the entries are deferred
    }
    for (std::size_t index = 0; index != m_laneCount; ++index) {
        if (m_lanes[index]->entry != nullptr) {
            finish(*m_lanes[index], State::deferred);
        }
    }
}

bool Examiner::next(std::size_t index, Step& step) {
    Lane& lane = *m_lanes[index];
    if (lane.entry != nullptr && proceed(lane, step)) {
        return true;
    }
    while (!m_supply.shouldStop()) {
        lane.entry = m_supply.take(m_busy);
        if (lane.entry == nullptr) {
            return false;
        }
        ++m_busy;
        if (begin(lane, step)) {
            return true;
        }
    }
    return false;
}

/// Ends a step of the lane's entry and begins the next one. Returns false after the last; the entry is then
/// settled.
bool Examiner::proceed(Lane& lane, Step& step) {
    State state = State::examined;
    try {
        if (lane.fact == nullptr) {
            addStep(lane);
            if (beginFactStep(lane, step)) {
                return true;
            }
        } else { // the step that ended was for a fact: store its value and restore the entry's
            *std::exchange(lane.fact, nullptr) = std::exchange(step.value, lane.value);
        }
        if (beginStep(lane, step)) {
            return true;
        }
        lane.entry->value = step.value;
        lane.entry->readError = lane.texts->readError();
        list(*lane.entry, m_scope);
        if (m_supply.shouldStop()) { // the stop may have cut reading short
            state = State::deferred;
        }
    } catch (...) {
        state = stateAfterFailure(*lane.entry);
    }
    finish(lane, state);
    return false;
}

/// Begins a step over the same text for a fact. Returns false if the text is not that of a fact.
bool Examiner::beginFactStep(Lane& lane, Step& step) {
    if (!lane.entry->facts) {
        return false;
    }
    lane.fact = addText(*lane.entry->facts, lane.texts->kind(), {step.data, step.length});
    if (lane.fact == nullptr) {
        return false;
    }
    lane.value = std::exchange(step.value, *lane.fact);
    return true;
}

/// Begins a step over the entry's next text. Returns false if there is none.
bool Examiner::beginStep(Lane& lane, Step& step) {
    std::string_view text;
    if (!lane.texts->next(text)) {
        return false;
    }
    step.data = text.data();
    step.length = static_cast<unsigned int>(text.size());
    lane.stepLength = step.length;
    return true;
}

/// Begins the lane's new entry. Returns false if it was settled without a step.
bool Examiner::begin(Lane& lane, Step& step) {
    QueuedEntry& entry = *lane.entry;
    State state = State::examined;
    try {
        if (identify(entry, m_scope) == Judgement::accepted) {
            lane.texts.emplace(*entry.input, entry.scanner->remainder(), lane.buffer,
                               EntryTexts::Lease::fail);
            step.value = 0;
            return beginStep(lane, step); // every entry has a path
        }
    } catch (...) {
        state = stateAfterFailure(entry);
    }
    finish(lane, state);
    return false;
}

void Examiner::addStep(Lane& lane) {
    constexpr unsigned long long oneMebibyte = 1U << 20U;
    if (m_scope.function.reportsSteps()) {
        lane.steps.add(lane.stepLength);
    }
    lane.undelivered += lane.stepLength;
    if (lane.undelivered > oneMebibyte) {
        lane.undelivered = 0;
        m_supply.deliver(*lane.entry, lane.steps); // even none: the worker reports other entries meanwhile
    }
}

void Examiner::finish(Lane& lane, State state) noexcept {
    lane.texts.reset();
    QueuedEntry& entry = *std::exchange(lane.entry, nullptr);
    if (entry.input && !entry.listing) {
        boost::filesystem::path().swap(entry.input->path); // the reporter builds it again; see pathOf
    }
    --m_busy;
    m_supply.settle(entry, state, lane.steps);
    lane.steps = StepSizes();
    lane.fact = nullptr;
    lane.undelivered = 0;
}

/// Call it in an exception handler. Stores the exception as the entry's failure, unless another try may help.
/// Returns the state with which to settle the entry. Settle it after the handler: the reporter may then
/// destroy the exception, which this thread must no longer hold.
State Examiner::stateAfterFailure(QueuedEntry& entry) noexcept {
    try {
        throw;
    } catch (const EntryTexts::LeasedFile&) { // NOLINT(bugprone-empty-catch): the reporter waits for it
    } catch (const TooManyNames&) { // NOLINT(bugprone-empty-catch): the reporter lists the directory
    } catch (...) {
        if (!m_supply.shouldStop() && !isLackOfResources()) {
            entry.failure = std::current_exception();
            return State::examined;
        }
    }
    return State::deferred;
}

std::string pathOf(const QueuedEntry& entry) {
    const std::string& directory = entry.parent->input->path.native();
    const char* const name = entry.parent->listing->names[entry.nameIndex];
    std::string path;
    path.reserve(directory.size() + 1 + std::char_traits<char>::length(name));
    path.append(directory).append(directory.back() == '/' ? 0 : 1, '/').append(name);
    return path;
}

Judgement identify(QueuedEntry& entry, const WalkScope& scope) {
    entry.input.emplace(pathOf(entry));
    entry.scanner = &getInstance(*entry.input);
    const Judgement judgement = entry.scanner->judge(*entry.input, scope.root.status.st_dev);
    if (scope.hasFacts && judgement == Judgement::accepted) {
        entry.facts = std::make_unique<EntryFacts>();
    }
    return judgement;
}

void list(QueuedEntry& entry, const WalkScope& scope) {
    constexpr std::size_t maxNamesPerDirectoryAhead = 16384;
    if (entry.scanner == &scope.directoryScanner) {
        entry.listing = std::make_unique<Listing>(
            Names(entry.input->path, entry.isAhead ? maxNamesPerDirectoryAhead : Names::unlimited));
    }
}

} // namespace Nerix::FileScanners
