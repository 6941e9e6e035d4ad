#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"

/// Entries that contribute nothing: never accepted by a walk, never read, never reported. As the root of a
/// walk they leave the value as it came.
namespace Nerix::FileScanners {

class BlockDevice final : public IFileScanner {
public:
    bool accept(const FileInput&) const override { return false; }
    hash_t process(const FileInput&, hash_t value, const IHashFunction&) const override { return value; }
};

class CharDevice final : public IFileScanner {
public:
    bool accept(const FileInput&) const override { return false; }
    hash_t process(const FileInput&, hash_t value, const IHashFunction&) const override { return value; }
};

class LocalPipe final : public IFileScanner {
public:
    bool accept(const FileInput&) const override { return false; }
    hash_t process(const FileInput&, hash_t value, const IHashFunction&) const override { return value; }
};

class LocalSocket final : public IFileScanner {
public:
    bool accept(const FileInput&) const override { return false; }
    hash_t process(const FileInput&, hash_t value, const IHashFunction&) const override { return value; }
};

/// Whatever lstat may report beside the known types.
class Unknown final : public IFileScanner {
public:
    bool accept(const FileInput&) const override { return false; }
    hash_t process(const FileInput&, hash_t value, const IHashFunction&) const override { return value; }
};

} // namespace Nerix::FileScanners
