#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"

namespace Nerix::FileScanners {

/// Regular files: path, status text, extended attributes, content in chunks of 4096 bytes.
class Regular final : public IFileScanner {
public:
    bool accept(const FileInput&) const override { return true; }

    /// A read error of the content is not detected: the content ends there.
    hash_t process(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
    Judgement judge(const FileInput&, dev_t) const override { return Judgement::accepted; }
    hash_t examine(const FileInput& entry, hash_t value, const IHashFunction& function) const override;
};

} // namespace Nerix::FileScanners
