#pragma once

#include <boost/optional/optional.hpp>

#include <string>

/// The file of emulated facts, for development devices: lines "key:value", neither of them empty. Anything after a
/// second ':' is ignored, and dropped when the file is written anew. Meant for one tester process at a time.
///
/// All functions need the product to be initialised and log a warning that they are for debugging. They throw
/// GenericException, with a text for the entry concerned or a description and the path of the file.
namespace Nerix::Platform {

/// The value of the first entry with this key; nothing when there is no file. Throws when an existing file
/// has no such entry, and for a line without key or value that stands before it.
boost::optional<std::string> getEmulatedInfoValue(const std::string& key);

/// Makes the entry the last of the file, in place of an earlier one; makes the file when there is none. The file is
/// replaced as a whole; a failure may leave "helper.txt" beside it. Throws for a key or value that is empty or holds
/// a ':' or a line break.
void setEmulatedInfoValue(const std::string& key, const std::string& value);

/// Makes an empty file, and its directory when only that is missing. What cannot be made shows when it is
/// used.
void ensureEmulatedInfoFileExists();

/// Warns that the caller is for debugging only.
void breakIfProductionAndNotDebug();

} // namespace Nerix::Platform
