#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/LeafScanner.h"

namespace Nerix::FileScanners {

/// Regular files: path, status text, extended attributes, content in chunks of 4096 bytes.
class Regular final : public LeafScanner {
public:
    /// If a read fails, the content ends there, and the value covers what was read. The thread's StepObserver
    /// gets the error.
    hash_t examine(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
    Remainder remainder() const override { return Remainder::content; }
};

} // namespace Nerix::FileScanners
