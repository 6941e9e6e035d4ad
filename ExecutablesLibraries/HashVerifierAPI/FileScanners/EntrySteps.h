#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"

#include <string>
#include <string_view>
#include <vector>

namespace Nerix {

struct FileInput;

/// The steps common to all hashed entries. Used only by the scanners.
namespace FileScanners {

/// Returns the text over which the status step is taken, five lines: owner, group and link count in decimal,
/// the permission bits ("URUWuxGRgwgxORowox" for 0644) and the special bits ("susgsb" for none), upper case
/// for a bit that is set.
std::string statusText(const FileInput& entry);

/// Takes a step over the path, then calls hashstat and hashxtattr. Returns the new value.
IHashFunction::hash_t hashMetadata(const FileInput& entry, IHashFunction::hash_t value,
                                   const IHashFunction& function);

/// Takes one step over the status text. Returns the new value.
IHashFunction::hash_t hashstat(const FileInput& entry, IHashFunction::hash_t value,
                               const IHashFunction& function);

/// Takes three steps for each extended attribute of the entry itself, in the byte order of the names: over
/// the name, over "separator", and over the value. Returns the new value. Throws GenericException if the
/// attributes cannot be read or change meanwhile. On a file system that does not support attributes
/// (EOPNOTSUPP), entries have none; if that were an error, an image of such a file system could not be
/// scanned. A list shorter than announced is accepted if a second read returns the same sizes (overlay file
/// systems count names that they hide).
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
