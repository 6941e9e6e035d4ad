#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"

namespace Nerix {

struct FileInput;

/// Folds one kind of entry into a chaining value. Instances are immutable; any number of threads may use one.
class IFileScanner {
public:
    virtual ~IFileScanner() = default;

    /// Whether a directory walk takes this entry into its value. The root of a walk is never asked.
    virtual bool accept(const FileInput& entry) const = 0;

    /// The value after the entry was folded into value with the given function. Entries that are folded are
    /// reported to the HashWorker with it. Throws GenericException when the entry cannot be read, and what
    /// the hash function throws; the entry is not reported then.
    virtual IHashFunction::hash_t process(const FileInput& entry, IHashFunction::hash_t value,
                                          const IHashFunction& function) const = 0;

protected:
    IFileScanner() = default;
    IFileScanner(const IFileScanner&) = default;
    IFileScanner& operator=(const IFileScanner&) = default;
};

} // namespace Nerix
