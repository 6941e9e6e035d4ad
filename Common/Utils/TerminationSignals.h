#pragma once

/// Catches INT, TERM and HUP, so that a run can end in good order.
namespace Nerix::Common::Utils {

/// From now on the first such signal is only remembered, and a second one ends the process. One within 0.2 s
/// of the first counts as the same: shells and timeout(1) send theirs twice. Signals that were ignored stay
/// ignored. Call it once, before other threads exist.
void catchTerminationSignals();

/// The remembered signal; 0 for none. Any thread may ask; it costs one atomic load.
int terminationSignal() noexcept;

/// Ends the process by the remembered signal as if it had not been caught; returns when there is none.
void endByTerminationSignal();

} // namespace Nerix::Common::Utils
