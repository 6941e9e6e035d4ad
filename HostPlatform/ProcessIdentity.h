#pragma once

#include <string>

/// Which process wrote something, so that whoever reads it later can tell whether that process is
/// still there.
namespace Nerix::Platform::Host::ProcessIdentity {

/// Of this process: the machine's boot, the name space of process ids, the id and the time of its start, in
/// one line; empty when /proc does not tell.
std::string own();

/// Whether that process has certainly ended. False, too, for one that cannot be seen from here, such as one
/// of another container.
bool isGone(const std::string& identity);

} // namespace Nerix::Platform::Host::ProcessIdentity
