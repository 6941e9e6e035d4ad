#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"

#include <string>
#include <string_view>
#include <vector>

namespace Nerix {

struct FileInput;

/// The steps common to all hashed entries. Used only by the scanners.
namespace FileScanners {

/// What the status step folds in, five lines: owner, group and link count in decimal, the permission
/// bits ("URUWuxGRgwgxORowox" for 0644) and the special bits ("susgsb" for none), upper case for a bit
/// that is set.
std::string statusText(const FileInput& entry);

/// A step over the path, then hashstat, then hashxtattr.
IHashFunction::hash_t hashMetadata(const FileInput& entry, IHashFunction::hash_t value,
                                   const IHashFunction& function);

/// One step over the status text.
IHashFunction::hash_t hashstat(const FileInput& entry, IHashFunction::hash_t value,
                               const IHashFunction& function);

/// For each extended attribute of the entry itself, in the byte order of the names: a step over the name, one
/// over "separator", one over the value. Throws GenericException when the attributes cannot be read or change
/// meanwhile. A file system that does not support attributes (EOPNOTSUPP) counts as one on which no entry has
/// any: nothing is unread there, and such an image could not be scanned at all. A list shorter than announced
/// is accepted if a second read gives the same sizes (overlay file systems count names they hide).
IHashFunction::hash_t hashxtattr(const FileInput& entry, IHashFunction::hash_t value,
                                 const IHashFunction& function);

/// Adds the names of the entry's attributes to `names`, which must be empty, sorted by their bytes. Throws as
/// hashxtattr does.
void listxattr(const FileInput& entry, std::vector<std::string>& names);

/// Returns the value of the attribute. Throws as hashxtattr does. data() is not null even if it is empty.
std::vector<char> readxattr(const FileInput& entry, const std::string& name);

constexpr std::string_view attributeSeparator = "separator";

} // namespace FileScanners

} // namespace Nerix
