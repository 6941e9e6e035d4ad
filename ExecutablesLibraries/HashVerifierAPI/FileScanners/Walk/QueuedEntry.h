#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Names.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/StepSizes.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/EntryFacts.h"

#include <boost/intrusive/list_hook.hpp>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iterator>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace Nerix::FileScanners {

/// The members that only a directory needs.
struct Listing {
    static constexpr std::size_t maxDigits = 20; ///< of a value

    /// Reserves the memory for all values, so that addValue needs none.
    explicit Listing(Names itsNames) : names(std::move(itsNames)) {
        values.reserve(names.size() * (maxDigits + 1)); // each with a line feed
    }

    /// Adds the value of an entry. Used only by the reporter.
    void addValue(std::uint64_t value) {
        char digits[maxDigits];
        values.append(digits, std::to_chars(std::begin(digits), std::end(digits), value).ptr);
        values += '\n';
    }

    const Names names;
    // Guarded by the queue.
    std::size_t next = 0;    ///< the first name that no thread has taken
    std::size_t inQueue = 0; ///< number of the directory's entries in the queue

    // Used only by the reporter.
    bool isReported = false; ///< the directory's own steps have been reported
    std::string values;      ///< of the entries reported so far, one per line
};

/// An entry that a thread has taken and the reporter has not reported yet. Unless marked otherwise, only the
/// thread that examines the entry uses a member, and after that only the reporter.
struct QueuedEntry : boost::intrusive::list_base_hook<> {
    enum class State {
        beingExamined,
        examined, ///< with a value, or a failure
        deferred  ///< could not be examined ahead: the reporter examines it as the front
    };

    // Guarded by the queue.
    State state = State::beingExamined;
    bool isAhead = false;     ///< false for the root, and once the reporter examines the entry as the front
    StepSizes deliveredSteps; ///< delivered by the thread that examines the entry, and not yet reported

    // Set by the queue when the entry is taken.
    std::list<QueuedEntry>::iterator place;
    QueuedEntry* parent = nullptr; ///< the containing directory; null for the root
    std::size_t depth = 0;         ///< below the root, which is 0
    std::size_t nameIndex = 0;     ///< in the parent's names

    std::optional<FileInput> input;
    const IFileScanner* scanner = nullptr;
    IFileScanner::hash_t value = 0;
    std::unique_ptr<Listing> listing;  ///< of a directory that has been examined
    std::unique_ptr<EntryFacts> facts; ///< null if the run does not record facts
    int readError = 0;                 ///< the errno that ended a file's content early; 0 for none
    std::exception_ptr failure;        ///< why the entry could not be examined; null if it was

    std::uint64_t reportedSteps = 0; ///< used only by the reporter

    bool hasNamesLeft() const { return listing && listing->next < listing->names.size(); }
};

} // namespace Nerix::FileScanners
