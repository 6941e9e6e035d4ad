#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"

namespace Nerix::FileScanners {

/// Directories: path, status text, extended attributes, and the values of all accepted entries, each computed
/// from 0 and written in decimal on a line of its own, in the byte order of the names.
class Directory final : public IFileScanner {
public:
    /// False for what is on another device than the root and for mount points, which are reported.
    bool accept(const FileInput& entry) const override;

    /// Walks everything below, other cores working ahead; see Walk.h. The first failure ends the walk; it is
    /// logged at ERR at each level that it passes, and the levels are added to its context. Throws
    /// boost::filesystem::filesystem_error when a directory cannot be listed.
    hash_t process(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
    Judgement judge(const FileInput& entry, dev_t rootDevice) const override;
    hash_t examine(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
};

} // namespace Nerix::FileScanners
