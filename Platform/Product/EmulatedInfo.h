#pragma once

#include <boost/optional/optional.hpp>

#include <string>

/// The file of emulated facts, for development devices: lines "key:value", neither of them empty. Anything
/// after a second ':' is ignored, and dropped when the file is rewritten. Meant for one tester process at
/// a time.
///
/// All functions need the product to be initialised and log a warning that they are for debugging. They throw
/// GenericException, with a description and the path of a file that cannot be used or has a bad line, or with
/// a text for a key or value that is bad or missing.
namespace Nerix::Platform {

/// The value of the first entry with this key; nothing when there is no file. Throws when an existing file
/// has no such entry, and for a line without key or value that stands before it.
boost::optional<std::string> getEmulatedInfoValue(const std::string& key);

/// Makes the entry the last of the file, in place of an earlier one; makes the file when there is none. It is
/// written to "helper.txt" beside it, which then takes the file's place; a failure may leave that file, and
/// when only the renaming fails, the entries are in it alone. Throws for a line of the file without key
/// or value, and, with nothing created, for a key or value that is empty or holds a line break, a key with a ':' and a value
/// that begins with one: none of them could be read back.
///
/// A ':' inside a value is stored like any character, but ends the value for whoever reads it.
void setEmulatedInfoValue(const std::string& key, const std::string& value);

/// Makes an empty file, and its directory when only that is missing. A failure shows when the file is used.
void ensureEmulatedInfoFileExists();

/// Warns that the caller is for debugging only.
void breakIfProductionAndNotDebug();

} // namespace Nerix::Platform
