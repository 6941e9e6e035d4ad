#pragma once

#include "HostPlatform/SettingsStore.h"

#include <string>

/// Formats the output of --json: one object per line, in ASCII. Text that is not valid UTF-8 becomes an array
/// of bytes, as in journalctl.
namespace Nerix {

struct EntryChange;
struct RunState;

/// Returns an object such as
/// {"change":"changed","path":"/x","facts":{"mode":{"before":"0644","after":"0600"}}}. "facts" contains the
/// details that differ; only a change between two logs with details has it.
std::string jsonOf(const EntryChange& change);

/// Returns an object such as {"key":"db/x","value":1}. The value is a string, number or boolean, as stored.
/// If a killed run left the setting behind, the object also contains "killed":true.
std::string jsonOf(const Platform::Host::Setting& setting);

/// Returns an object such as {"status":"active","progress":"42.17","result":"00000111"}; see RunState.h.
std::string jsonOf(const RunState& state);

} // namespace Nerix
