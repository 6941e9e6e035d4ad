#pragma once

#include "HostPlatform/SettingsStore.h"

#include <string>

/// Output of --json: one object per line, in ASCII. Text that is not valid UTF-8 becomes an array of bytes,
/// as in journalctl.
namespace Nerix {

struct EntryChange;
struct RunState;

/// {"change":"changed","path":"/x","facts":{"mode":{"before":"0644","after":"0600"}}}; facts only in a change
/// between two logs with details.
std::string jsonOf(const EntryChange& change);

/// {"key":"db/x","value":1}: a string, number or boolean, as stored; "killed":true if it was left behind by a
/// killed run.
std::string jsonOf(const Platform::Host::Setting& setting);

/// {"status":"active","progress":"42.17","result":"00000111"}; see RunState.h.
std::string jsonOf(const RunState& state);

} // namespace Nerix
