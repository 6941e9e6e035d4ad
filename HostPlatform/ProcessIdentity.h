#pragma once

#include <string>

/// Names the process that wrote something, so that a reader can tell whether it still runs.
namespace Nerix::Platform::Host::ProcessIdentity {

/// This process: the machine's boot, the process-id name space, the id and its start time, in one line; empty
/// if /proc is not readable.
std::string own();

/// Returns true if that process has certainly ended. False also for one that cannot be seen from here, such
/// as another container's.
bool isGone(const std::string& identity);

} // namespace Nerix::Platform::Host::ProcessIdentity
