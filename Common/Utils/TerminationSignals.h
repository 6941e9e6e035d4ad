#pragma once

/// Catches SIGINT, SIGTERM and SIGHUP, so that a run can end cleanly.
namespace Nerix::Common::Utils {

/// From now on the first such signal is only remembered, and a second one ends the process. One within 0.2 s
/// of the first counts as the same: shells and timeout(1) send theirs twice. Signals that were ignored stay
/// ignored. On exit, the process re-raises the remembered signal with its default action, after all atexit
/// handlers registered later than this call. Call it once, before other threads exist.
void catchTerminationSignals();

/// The remembered signal; 0 for none. Any thread may ask; it costs one atomic load.
int terminationSignal() noexcept;

} // namespace Nerix::Common::Utils
