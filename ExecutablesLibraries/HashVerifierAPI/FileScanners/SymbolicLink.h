#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/LeafScanner.h"

#include <vector>

namespace Nerix::FileScanners {

/// Symbolic links: path, status text, extended attributes, target text. Never followed, so a dangling link is
/// hashed like any other.
class SymbolicLink final : public LeafScanner {
public:
    hash_t examine(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
    Remainder remainder() const override { return Remainder::target; }
};

/// Returns the target of the link, truncated or zero-padded to the size in its status. Throws
/// GenericException "access error: can't read symlink: " + quoted path.
std::vector<char> targetOf(const FileInput& entry);

} // namespace Nerix::FileScanners
