#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/SymbolicLink.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/AccessError.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntrySteps.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"

#include <cerrno>

#include <unistd.h>

namespace Nerix::FileScanners {

using hash_t = IHashFunction::hash_t;

std::vector<char> targetOf(const FileInput& entry) {
    // The target is truncated or zero-padded to the size that lstat returned. That differs from the target's
    // length in /proc, where it is often 0 or 64, and if the link has been replaced.
    const auto length = static_cast<std::size_t>(entry.status.st_size);
    std::vector<char> target(length + 1);
    if (::readlink(entry.path.c_str(), target.data(), target.size()) == -1) {
        BOOST_THROW_EXCEPTION(accessError("read", entry.path, errno) << Common::Utils::errinfo_stream(
                                  "access error: can't read symlink: ", entry.path));
    }
    target.pop_back();
    return target;
}

hash_t SymbolicLink::examine(const FileInput& entry, hash_t value, const IHashFunction& function) const {
    value = hashMetadata(entry, value, function);
    const std::vector<char> target = targetOf(entry);
    return function.apply(value, static_cast<unsigned int>(target.size()), target.data());
}

} // namespace Nerix::FileScanners
