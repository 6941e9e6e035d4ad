#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"

namespace Nerix::FileScanners {

/// Base of the scanners for entries without children, regular files and links: always accepted, and fully
/// processed by examine.
class LeafScanner : public IFileScanner {
public:
    bool accept(const FileInput&) const final { return true; }
    Judgement judge(const FileInput&, dev_t) const final { return Judgement::accepted; }
    hash_t process(const FileInput& entry, hash_t value, const IHashFunction& function) const final;
};

} // namespace Nerix::FileScanners
