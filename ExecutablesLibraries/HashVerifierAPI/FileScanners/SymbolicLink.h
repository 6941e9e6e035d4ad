#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/LeafScanner.h"

namespace Nerix::FileScanners {

/// Symbolic links: path, status text, extended attributes, target text. Never followed, so a dangling link is
/// like any other.
class SymbolicLink final : public LeafScanner {
public:
    hash_t examine(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
};

} // namespace Nerix::FileScanners
