#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"

namespace Nerix::FileScanners {

/// The common base of entries that contribute nothing: never accepted by a walk, never read, never reported.
/// As the root of a run, leaves the value unchanged.
class SpecialFile : public IFileScanner {
public:
    bool accept(const FileInput&) const final { return false; }
    hash_t process(const FileInput&, hash_t value, const IHashFunction&) const final { return value; }
};

class BlockDevice final : public SpecialFile {};
class CharDevice final : public SpecialFile {};
class LocalPipe final : public SpecialFile {};
class LocalSocket final : public SpecialFile {};

/// Any file type not listed above.
class Unknown final : public SpecialFile {};

} // namespace Nerix::FileScanners
