#pragma once

/// INT, TERM and HUP, by which users and the system end a process: caught, so that it can leave things in
/// good order first.
namespace Nerix::Common::Utils {

/// From now on a first such signal is only remembered, and a second one ends the process at once; what
/// comes within a fifth of a second of the first counts as the same, as shells and timeout(1) send theirs
/// twice. Signals that the process was started to ignore stay ignored. To be called once, before other
/// threads exist.
void catchTerminationSignals();

/// The signal that was remembered; 0 for none. Any thread may ask, at the price of reading a variable.
int terminationSignal() noexcept;

/// Ends the process by the signal that was remembered, as if it had not been caught; returns when
/// there is none.
void endByTerminationSignal();

} // namespace Nerix::Common::Utils
