#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"

namespace Nerix::FileScanners {

/// Regular files: path, status text, extended attributes, content in chunks of 4096 bytes.
class Regular final : public IFileScanner {
public:
    bool accept(const FileInput&) const override { return true; }

    /// A read error of the content is not detected: the content ends there.
    IHashFunction::hash_t process(const FileInput& entry, IHashFunction::hash_t value,
                                  const IHashFunction& function) const override;
};

} // namespace Nerix::FileScanners
