#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"

#include <sys/types.h>

namespace Nerix {

struct FileInput;

/// What a walk does with an entry. Those of a directory that is left out are the values of its record.
enum class Judgement : IHashFunction::hash_t {
    accepted,
    ignored, ///< left out without a record
    otherDevice = 0x222,
    mountPoint = 0x444,
};

/// Folds one kind of entry into a chaining value. Instances are immutable and may be used from any thread,
/// several at once. While a verification runs, accept and process are for the HashWorker's own thread, as
/// they report to it; judge and examine report nothing and are what accept and process do before that.
class IFileScanner {
public:
    using hash_t = IHashFunction::hash_t;

    virtual ~IFileScanner() = default;

    /// Whether a directory walk takes this entry into its value; a directory that it leaves out is reported.
    /// The root of a walk is never asked.
    virtual bool accept(const FileInput& entry) const = 0;

    /// The value after the entry, and everything below it, was folded into value with the given function.
    /// Entries that are folded are reported to the HashWorker with it. Throws what examine throws, and
    /// VConfException when progress cannot be published. An entry that could not be read is not reported.
    virtual hash_t process(const FileInput& entry, hash_t value, const IHashFunction& function) const = 0;

    /// rootDevice: st_dev of the walk's root. Opens nothing.
    virtual Judgement judge(const FileInput& /*entry*/, dev_t /*rootDevice*/) const {
        return Judgement::ignored;
    }

    /// The value after what the entry itself has to fold: all of a file or a link; path, status and
    /// attributes of a directory; nothing of other kinds. Throws GenericException when the entry cannot be
    /// read, with its text, path and errno as entries (AccessError.h), and what the hash function throws.
    virtual hash_t examine(const FileInput& /*entry*/, hash_t value,
                           const IHashFunction& /*function*/) const {
        return value;
    }
};

} // namespace Nerix
