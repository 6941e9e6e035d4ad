#pragma once

#include "HostPlatform/SettingsStore.h"

#include <string>

/// Formats the output of --json: one object per line, in ASCII. Text that is not valid UTF-8 becomes an array
/// of bytes, as in journalctl; the name of an attribute is escaped instead.
namespace Nerix {

struct ComparisonResult;
struct ComparisonRules;
struct Difference;
struct RunState;
struct ScannedTree;
struct TreeScan;

/// Returns an object such as
/// {"change":"changed","path":"x","facts":{"mode":{"before":"0644","after":"0600"}}}. "facts" contains the
/// facts that differ; "attributes" in it has an object for each attribute, with null where there is none.
/// "newPath" is the later path of a moved entry, "entriesBelow" the number of entries below that belong to
/// the difference.
std::string jsonOf(const Difference& difference);

/// Returns an object that counts the entries compared, the differences of each kind and in each fact, and the
/// bytes removed and added, and lists what was not compared.
std::string jsonOf(const ComparisonResult& result, const ComparisonRules& rules);

/// Returns an object with "path", "method", "root", "value", "complete", "unreadable", "entries", "bytes",
/// "seconds" and "version". The value is null if something could not be read; "unreadable" is the list of
/// sentences for that. The root is the path under which the tree was hashed, null if it does not exist.
std::string jsonOf(const TreeScan& scan, const ScannedTree& tree);

/// Returns an object such as {"key":"db/x","value":1}. The value is a string, number or boolean, as stored.
/// If a killed run left the setting behind, the object also contains "killed":true.
std::string jsonOf(const Platform::Host::Setting& setting);

/// Returns an object such as {"status":"active","progress":"42.17","result":"00000111"}; see RunState.h.
std::string jsonOf(const RunState& state);

} // namespace Nerix
