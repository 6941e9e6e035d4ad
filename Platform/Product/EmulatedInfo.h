#pragma once

#include <boost/optional/optional.hpp>

#include <string>

/// The file of emulated facts, for development devices: lines "key:value", with neither part empty. Anything
/// after a second ':' is ignored, and dropped when the file is rewritten. Meant for one tester process at a
/// time.
///
/// All functions need the product to be initialised and log a warning that they are for debugging. They throw
/// GenericException. If the file cannot be used or has a malformed line, it carries a description and the
/// path; if a key or value is invalid or missing, a text.
namespace Nerix::Platform {

/// The value of the first entry with this key; nothing when there is no file. Throws when an existing file
/// has no such entry, and for a line without key or value that stands before it.
boost::optional<std::string> getEmulatedInfoValue(const std::string& key);

/// Appends the entry, replacing an earlier one with the same key; creates the file if necessary. The new
/// content is written to "helper.txt" in the same directory, which then replaces the file. After a failure
/// helper.txt may remain; if only the rename failed, the entries exist only there. Throws for a line of the
/// file without key or value, and, with nothing created, for a key or value that is empty or holds a line
/// break, a key with a ':' and a value that begins with one: none of them could be read back.
///
/// A ':' inside a value is stored like any character, but ends the value for whoever reads it.
void setEmulatedInfoValue(const std::string& key, const std::string& value);

/// Creates an empty file, and its directory (one level) if missing. Failures surface when the file is used.
void ensureEmulatedInfoFileExists();

/// Logs a warning that the calling function is for debugging only.
void breakIfProductionAndNotDebug();

} // namespace Nerix::Platform
