#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"

namespace Nerix::FileScanners {

/// Symbolic links: path, status text, extended attributes, target text. Never followed, so a dangling link is
/// like any other.
class SymbolicLink final : public IFileScanner {
public:
    bool accept(const FileInput&) const override { return true; }
    hash_t process(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
    Judgement judge(const FileInput&, dev_t) const override { return Judgement::accepted; }
    hash_t examine(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
};

} // namespace Nerix::FileScanners
