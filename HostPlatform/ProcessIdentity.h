#pragma once

#include <string>

/// Identifies the process that wrote something, so that a reader can check whether it is still running.
namespace Nerix::Platform::Host::ProcessIdentity {

/// Returns the identity of this process in one line: boot id, process-id namespace, process id and start
/// time. Returns an empty string if /proc is not readable.
std::string ofThisProcess();

/// Returns true if the process has certainly ended. Returns false if this is unknown, for example if it is in
/// another container.
bool isGone(const std::string& identity);

} // namespace Nerix::Platform::Host::ProcessIdentity
