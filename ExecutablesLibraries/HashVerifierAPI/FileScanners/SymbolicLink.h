#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"

namespace Nerix::FileScanners {

/// Symbolic links: path, status text, extended attributes, target text. Never followed, so a dangling link is
/// like any other.
class SymbolicLink final : public IFileScanner {
public:
    bool accept(const FileInput&) const override { return true; }
    IHashFunction::hash_t process(const FileInput& entry, IHashFunction::hash_t value,
                                  const IHashFunction& function) const override;
};

} // namespace Nerix::FileScanners
