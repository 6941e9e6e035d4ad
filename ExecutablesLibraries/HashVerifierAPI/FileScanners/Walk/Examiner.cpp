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

/// The state of an entry's examination.
struct Examiner::Examination {
    explicit Examination(QueuedEntry& itsEntry) : entry(itsEntry) {}

    bool beginStep(Step& step);
    bool beginFactStep(Step& step);

    QueuedEntry& entry;
    std::optional<EntryTexts> texts;       ///< none until the entry is accepted
    StepSizes steps;                       ///< not yet delivered
    unsigned long long undelivered = 0;    ///< bytes hashed since the last call of deliver
    unsigned int stepLength = 0;           ///< of the step in progress
    IHashFunction::hash_t* fact = nullptr; ///< that the step in progress computes; null for the entry's value
    IHashFunction::hash_t value = 0;       ///< the entry's value during a step for a fact
};

/// Begins a step over the entry's next text. Returns false if there is none.
bool Examiner::Examination::beginStep(Step& step) {
    std::string_view text;
    if (!texts->next(text)) {
        return false;
    }
    step.data = text.data();
    step.length = static_cast<unsigned int>(text.size());
    stepLength = step.length;
    return true;
}

/// Begins a second step over the same text, for the fact to which it belongs. Returns false if it belongs to
/// none.
bool Examiner::Examination::beginFactStep(Step& step) {
    if (!entry.facts) {
        return false;
    }
    fact = addText(*entry.facts, texts->kind(), {step.data, step.length});
    if (fact == nullptr) {
        return false;
    }
    value = std::exchange(step.value, *fact);
    return true;
}

struct Examiner::Lane {
    explicit Lane(std::size_t bufferSize) : buffer(bufferSize) {}

    EntryTexts::Buffer buffer;
    std::optional<Examination> examination; ///< none if the lane is idle
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
        if (m_lanes[index]->examination) {
            finish(*m_lanes[index], State::deferred);
        }
    }
}

bool Examiner::next(std::size_t index, Step& step) {
    Lane& lane = *m_lanes[index];
    if (lane.examination && proceed(lane, step)) {
        return true;
    }
    while (!m_supply.shouldStop()) {
        QueuedEntry* const entry = m_supply.take(m_busy);
        if (entry == nullptr) {
            return false;
        }
        lane.examination.emplace(*entry);
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
    Examination& examination = *lane.examination;
    QueuedEntry& entry = examination.entry;
    State state = State::examined;
    try {
        if (examination.fact == nullptr) {
            addStep(examination);
            if (examination.beginFactStep(step)) {
                return true;
            }
        } else { // the step that ended was for a fact: store its value and restore the entry's
            *std::exchange(examination.fact, nullptr) = std::exchange(step.value, examination.value);
        }
        if (examination.beginStep(step)) {
            return true;
        }
        entry.value = step.value;
        entry.readError = examination.texts->readError();
        list(entry, m_scope);
        if (m_supply.shouldStop()) { // the stop may have cut reading short
            state = State::deferred;
        }
    } catch (...) {
        state = stateAfterFailure(entry);
    }
    finish(lane, state);
    return false;
}

/// Begins the lane's new entry. Returns false if it was settled without a step.
bool Examiner::begin(Lane& lane, Step& step) {
    QueuedEntry& entry = lane.examination->entry;
    State state = State::examined;
    try {
        if (identify(entry, m_scope) == Judgement::accepted) {
            lane.examination->texts.emplace(*entry.input, entry.scanner->remainder(), lane.buffer,
                                            EntryTexts::Lease::fail);
            step.value = 0;
            return lane.examination->beginStep(step); // true: the first text is the path
        }
    } catch (...) {
        state = stateAfterFailure(entry);
    }
    finish(lane, state);
    return false;
}

void Examiner::addStep(Examination& examination) {
    constexpr unsigned long long oneMebibyte = 1U << 20U;
    if (m_scope.function.reportsSteps()) {
        examination.steps.add(examination.stepLength);
    }
    examination.undelivered += examination.stepLength;
    if (examination.undelivered > oneMebibyte) {
        examination.undelivered = 0;
        // Also if no steps are recorded, because the worker reports other entries meanwhile.
        m_supply.deliver(examination.entry, examination.steps);
    }
}

void Examiner::finish(Lane& lane, State state) noexcept {
    QueuedEntry& entry = lane.examination->entry;
    StepSizes steps = std::move(lane.examination->steps);
    lane.examination.reset();
    if (entry.input && !entry.listing) {
        boost::filesystem::path().swap(entry.input->path); // the reporter builds it again; see pathOf
    }
    --m_busy;
    m_supply.settle(entry, state, steps);
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
