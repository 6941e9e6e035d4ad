#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"

namespace Nerix {

struct FileInput;

/// Folds one kind of entry into a chaining value. Instances are immutable, but report to the HashWorker: one
/// thread at a time may use them, in a run the worker's own.
class IFileScanner {
public:
    virtual ~IFileScanner() = default;

    /// Whether a directory walk takes this entry into its value. The root of a walk is never asked.
    virtual bool accept(const FileInput& entry) const = 0;

    /// The value after the entry was folded into value with the given function. Entries that are folded are
    /// reported to the HashWorker with it. Throws GenericException or boost::filesystem::filesystem_error
    /// when the entry cannot be read, VConfException when progress cannot be published, and what the hash
    /// function throws. An entry that could not be read is not reported.
    virtual IHashFunction::hash_t process(const FileInput& entry, IHashFunction::hash_t value,
                                          const IHashFunction& function) const = 0;

protected:
    IFileScanner() = default;
    IFileScanner(const IFileScanner&) = default;
    IFileScanner& operator=(const IFileScanner&) = default;
};

} // namespace Nerix
