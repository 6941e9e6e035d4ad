#pragma once

#include "HostPlatform/SettingsStore.h"

#include <string>

/// What --json prints: objects of one line, in ASCII. Text that is no UTF-8 is an array of its bytes, as journalctl has
/// it.
namespace Nerix {

struct EntryChange;
struct RunState;

/// {"change":"changed","path":"/x","facts":{"mode":{"before":"0644","after":"0600"}}}; facts only in a change
/// between two logs with details.
std::string jsonOf(const EntryChange& change);

/// {"key":"db/x","value":1}: text, number or truth, as it is stored; "killed":true when it is left of a run
/// that was killed.
std::string jsonOf(const Platform::Host::Setting& setting);

/// {"status":"active","progress":"42.17","result":"00000111"}; see RunState.h.
std::string jsonOf(const RunState& state);

} // namespace Nerix
