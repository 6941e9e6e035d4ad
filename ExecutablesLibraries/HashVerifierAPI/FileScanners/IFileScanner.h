#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"

#include <sys/types.h>

namespace Nerix {

struct FileInput;

/// What a walk does with an entry. The last two values are recorded in the scan log for a skipped directory.
enum class Judgement : IHashFunction::hash_t {
    accepted,
    ignored, ///< left out without a record
    otherDevice = 0x222,
    mountPoint = 0x444,
};

/// Folds one kind of entry into a chaining value. Instances are immutable and may be used from any thread,
/// several at once. While a verification runs, accept and process are for the HashWorker's own thread, as
/// they report to it; judge and examine do the same work without reporting.
class IFileScanner {
public:
    using hash_t = IHashFunction::hash_t;

    virtual ~IFileScanner() = default;

    /// Whether a directory walk takes this entry into its value; a skipped directory is reported. Not called
    /// for the root of a walk.
    virtual bool accept(const FileInput& entry) const = 0;

    /// The value after the entry, and everything below it, was folded into value with the given function.
    /// Hashed entries are reported to the HashWorker with their value. Throws what examine throws, and
    /// VConfException when progress cannot be published. An entry that could not be read is not reported.
    virtual hash_t process(const FileInput& entry, hash_t value, const IHashFunction& function) const = 0;

    /// rootDevice: st_dev of the walk's root. Performs no I/O.
    virtual Judgement judge(const FileInput& /*entry*/, dev_t /*rootDevice*/) const {
        return Judgement::ignored;
    }

    /// Folds the entry itself into value: a file or link completely; of a directory its path, status and
    /// attributes but not its contents; special files not at all. Throws GenericException when the entry
    /// cannot be read, with its text, path and errno as entries (AccessError.h), and what the hash function
    /// throws.
    virtual hash_t examine(const FileInput& /*entry*/, hash_t value,
                           const IHashFunction& /*function*/) const {
        return value;
    }

    enum class Remainder { none, content, target };

    /// Returns which text of such an entry is hashed after its path, status and attributes.
    virtual Remainder remainder() const { return Remainder::none; }
};

} // namespace Nerix
