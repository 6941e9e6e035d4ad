#pragma once

/// For a process that must leave no trace on the machine, for example because it scans the tree that contains
/// the state: settings are kept in memory, log records are discarded, and platform.ini is not read.
namespace Nerix::Platform::Host {

/// Call it before anything asks the platform. It holds until the process ends.
void keepStateInMemory();

/// Any thread may ask.
bool isStateInMemory();

} // namespace Nerix::Platform::Host
