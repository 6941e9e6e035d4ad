#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/LeafScanner.h"

namespace Nerix::FileScanners {

/// Regular files: path, status text, extended attributes, content in chunks of 4096 bytes.
class Regular final : public LeafScanner {
public:
    /// A read error ends the content there, and the value over what was read counts. The thread's
    /// StepObserver gets the error, so that the run can warn of it.
    hash_t examine(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
    Remainder remainder() const override { return Remainder::content; }
};

} // namespace Nerix::FileScanners
