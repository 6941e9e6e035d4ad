#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Names.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/StepSizes.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/EntryFacts.h"

#include <boost/intrusive/list_hook.hpp>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace Nerix::FileScanners {

/// What a directory has besides other entries.
struct Listing {
    explicit Listing(Names itsNames) : names(std::move(itsNames)) {}

    const Names names;
    // Guarded by the queue.
    std::size_t next = 0;    ///< the first name that no thread has taken
    std::size_t inQueue = 0; ///< how many entries of the directory the queue holds

    // Used only by the reporter.
    bool isReported = false; ///< whether the directory's own steps have been reported
    std::string values;      ///< of the entries reported so far, one per line
};

/// An entry that a thread has taken and the reporter has not reported yet. Members not marked otherwise
/// belong to the thread that examines the entry, and to the reporter after that.
struct QueuedEntry : boost::intrusive::list_base_hook<> {
    enum class State {
        beingExamined,
        examined, ///< with a value, or a failure
        deferred  ///< could not be examined ahead: the reporter does it when the entry is in front
    };

    // Guarded by the queue.
    State state = State::beingExamined;
    bool isAhead = false;     ///< taken from its directory, and not yet deferred to the reporter
    StepSizes deliveredSteps; ///< taken by the thread that examines the entry, and not reported yet

    // Set by the queue when the entry is taken.
    std::list<QueuedEntry>::iterator place;
    QueuedEntry* parent = nullptr; ///< the containing directory; null for the root
    std::size_t depth = 0;         ///< below the root, which is 0
    std::size_t nameIndex = 0;     ///< its number among the parent's names

    std::optional<FileInput> input;
    const IFileScanner* scanner = nullptr;
    IFileScanner::hash_t value = 0;
    std::unique_ptr<Listing> listing;  ///< a directory has one once it was examined
    std::unique_ptr<EntryFacts> facts; ///< null if the run does not record facts
    int readError = 0;                 ///< the errno that ended a file's content early; 0 for none
    std::exception_ptr failure;        ///< why the entry could not be examined; null if it was

    std::uint64_t reportedSteps = 0; ///< used only by the reporter

    bool hasNamesLeft() const { return listing && listing->next < listing->names.size(); }
};

} // namespace Nerix::FileScanners
