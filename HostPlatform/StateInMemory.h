#pragma once

/// For a process that must leave no trace on the machine, as one that examines the tree in which the state is
/// kept: its settings are its own and end with it, its log records go nowhere, and no platform.ini is read.
namespace Nerix::Platform::Host {

/// Call it before anything asks the platform. It holds until the process ends.
void keepStateInMemory();

/// Any thread may ask.
bool isStateInMemory();

} // namespace Nerix::Platform::Host
