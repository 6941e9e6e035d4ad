#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FoldedFile.h"

namespace Nerix::FileScanners {

/// Regular files: path, status text, extended attributes, content in chunks of 4096 bytes.
class Regular final : public FoldedFile {
public:
    /// A read error of the content is not detected: the content ends there.
    hash_t examine(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
};

} // namespace Nerix::FileScanners
