#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntryTexts.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/QueuedEntry.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/ChainSource.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace Nerix::FileScanners {

/// The properties that all entries of a walk share. What they refer to must outlive the object.
struct WalkScope {
    const IHashFunction& function;
    const IFileScanner& directoryScanner;
    const FileInput& root;
    bool hasFacts; ///< facts are collected for each entry
};

/// Gives an examiner its entries and takes the results. Called on the examiner's thread.
class EntrySupply {
public:
    /// Returns an entry for an examiner that already examines `busy` others, or null if none is available
    /// now.
    virtual QueuedEntry* take(std::size_t busy) noexcept = 0;

    /// Adds steps of an entry that is still being examined. Leaves `steps` empty, unless memory ran out.
    virtual void deliver(QueuedEntry& entry, StepSizes& steps) noexcept = 0;

    /// Takes back an entry and adds its remaining steps.
    virtual void settle(QueuedEntry& entry, QueuedEntry::State state, StepSizes& steps) noexcept = 0;

    /// Returns true if the walk is ending, so values are no longer needed.
    virtual bool shouldStop() noexcept = 0;

protected:
    EntrySupply() = default;
    ~EntrySupply() = default;
    EntrySupply(const EntrySupply&) = default;
    EntrySupply& operator=(const EntrySupply&) = default;
};

/// Examines entries: reads and hashes them, and lists directories. Examines at most as many at a time as the
/// hash function has lanes. Reports nothing and does not depend on the order of entries. Each thread has its
/// own examiner.
class Examiner final : private ChainSource {
public:
    /// scope must outlive the object.
    Examiner(EntrySupply& supply, const WalkScope& scope);
    ~Examiner();

    /// Examines entries until the supply has none or the walk ends. Settles each entry that it takes. Stores
    /// a failure with its entry. Defers an entry if memory or file descriptors ran out, if it is a directory
    /// with too many names, or if another process holds a lease on it.
    void run() noexcept;

private:
    struct Examination;
    struct Lane;

    bool next(std::size_t index, Step& step) override;
    bool proceed(Lane& lane, Step& step);
    bool begin(Lane& lane, Step& step);
    void addStep(Examination& examination);
    void finish(Lane& lane, QueuedEntry::State state) noexcept;
    QueuedEntry::State stateAfterFailure(QueuedEntry& entry) noexcept;

    EntrySupply& m_supply;
    const WalkScope& m_scope;
    const std::size_t m_laneCount;
    std::vector<std::unique_ptr<Lane>> m_lanes;
    std::size_t m_busy = 0;
};

/// Returns the path of an entry other than the root. An entry that waits to be reported does not store its
/// path, which would take a fifth of its memory. A directory stores it, because the paths of its entries are
/// built from it.
std::string pathOf(const QueuedEntry& entry);

/// Sets the entry's input and scanner. Returns what a walk does with the entry. Throws GenericException
/// "access error: can't LSTAT file: " + quoted path.
Judgement identify(QueuedEntry& entry, const WalkScope& scope);

/// Lists the directory, if the entry is one. Throws what Names throws.
void list(QueuedEntry& entry, const WalkScope& scope);

} // namespace Nerix::FileScanners
