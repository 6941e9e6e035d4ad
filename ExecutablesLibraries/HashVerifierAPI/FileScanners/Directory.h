#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"

namespace Nerix::FileScanners {

/// Directories: path, status text, extended attributes, and the values of all accepted entries, each computed
/// from 0 and written in decimal on a separate line, in the byte order of the names.
class Directory final : public IFileScanner {
public:
    /// Returns false, and reports the entry, if it is a mount point or on a different device than the root.
    bool accept(const FileInput& entry) const override;

    /// Walks the whole subtree, with other threads working ahead; see Walk.h. Throws what Walk::run throws,
    /// and boost::filesystem::filesystem_error if a directory cannot be listed.
    hash_t process(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
    Judgement judge(const FileInput& entry, dev_t rootDevice) const override;
    hash_t examine(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
};

} // namespace Nerix::FileScanners
