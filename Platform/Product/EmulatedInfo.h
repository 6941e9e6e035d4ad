#pragma once

#include <boost/optional/optional.hpp>

#include <string>

/// Reads and writes the file of emulated facts, for development devices: lines "key:value", with neither part
/// empty. Anything after a second ':' is ignored, and dropped when the file is rewritten. Only one process at
/// a time may use it.
///
/// All functions log a warning that they are for debugging. All but breakIfProductionAndNotDebug throw
/// ProductUninitializedException before IProductInfo::initializeProduct. For any other failure they throw
/// GenericException with this error information: errinfo_description and errinfo_path if the file cannot be
/// used or has a malformed line; errinfo_description and errinfo_string if a key or value is invalid;
/// errinfo_string and errinfo_path if the key is missing.
namespace Nerix::Platform {

/// Returns the value of the first entry with this key, or boost::none if there is no file. Throws if the file
/// has no such entry, or if a line before it lacks a key or value.
boost::optional<std::string> getEmulatedInfoValue(const std::string& key);

/// Appends the entry, replacing an earlier one with the same key; creates the file if necessary. The new
/// content is written to "helper.txt" in the same directory, which then replaces the file. After a failure
/// helper.txt may remain; if only the rename failed, the entries exist only there.
///
/// Throws if a line of the file has no key or value. Throws before creating anything if the key or value is
/// empty or contains a line break, the key contains ':' or the value begins with ':'. A later ':' in the
/// value is stored, but getEmulatedInfoValue returns only the part before it.
void setEmulatedInfoValue(const std::string& key, const std::string& value);

/// Creates the file, empty, and its directory (one level), if the file does not exist. Failures surface when
/// the file is used.
void ensureEmulatedInfoFileExists();

/// Logs a warning that the calling function is for debugging only.
void breakIfProductionAndNotDebug();

} // namespace Nerix::Platform
