#pragma once

namespace Nerix {

/// Shows the status, progress and result of a run from the settings store until the run ends or is killed.
/// Waits for a run if none is active. On a terminal, redraws one line; elsewhere, prints at most one line per
/// second. Prints JSON objects if isJson. On SIGINT or SIGTERM, ends the line and then the process, by that
/// signal. Returns the exit status: 0, or 1 if the run failed. Throws std::runtime_error if the store cannot
/// be read or standard output cannot be written.
int watch(bool isJson);

} // namespace Nerix
