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
/// several at once. While a verification runs, only the HashWorker's thread may call accept and process,
/// which report to it. judge decides like accept, and examine folds the entry itself; neither reports.
class IFileScanner {
public:
    using hash_t = IHashFunction::hash_t;

    virtual ~IFileScanner() = default;

    /// Returns true if a directory walk includes this entry in its value. Reports a skipped directory. Not
    /// called for the root of a walk.
    virtual bool accept(const FileInput& entry) const = 0;

    /// Folds the entry and everything below it into value, and returns the new value. Reports hashed entries
    /// with their values to the HashWorker, but no entry that could not be read. Throws what examine throws,
    /// and VConfException if progress cannot be published.
    virtual hash_t process(const FileInput& entry, hash_t value, const IHashFunction& function) const = 0;

    /// Returns what a walk does with the entry. rootDevice: st_dev of the walk's root. Performs no I/O.
    virtual Judgement judge(const FileInput& /*entry*/, dev_t /*rootDevice*/) const {
        return Judgement::ignored;
    }

    /// Folds the entry itself into value, and returns the new value: a file or link completely; of a
    /// directory its path, status and attributes but not its contents; special files not at all. Throws
    /// GenericException with the error information of AccessError.h if the entry cannot be read, and what the
    /// hash function throws.
    virtual hash_t examine(const FileInput& /*entry*/, hash_t value,
                           const IHashFunction& /*function*/) const {
        return value;
    }

    enum class Remainder { none, content, target };

    /// Returns what of such an entry is hashed after its path, status and attributes.
    virtual Remainder remainder() const { return Remainder::none; }
};

} // namespace Nerix
