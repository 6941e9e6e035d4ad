#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"

namespace Nerix::FileScanners {

/// The common base of regular files and links, entries with nothing below them: what examine folds is all of it, and it is always accepted.
class FoldedFile : public IFileScanner {
public:
    bool accept(const FileInput&) const final { return true; }
    Judgement judge(const FileInput&, dev_t) const final { return Judgement::accepted; }
    hash_t process(const FileInput& entry, hash_t value, const IHashFunction& function) const final;
};

} // namespace Nerix::FileScanners
