#pragma once

/// Catches SIGINT, SIGTERM and SIGHUP, so that a run can end cleanly.
namespace Nerix::Common::Utils {

/// Installs a handler that only remembers the first signal; a second one ends the process. A signal within
/// 0.2 s of the first counts as the same one, because shells and timeout(1) send theirs twice. Signals that
/// were ignored stay ignored. On exit, the process raises the remembered signal again, with its default
/// action, after all atexit handlers registered after this call. Call it once, before other threads exist.
void catchTerminationSignals();

/// Returns the remembered signal, or 0 if there is none. Thread-safe; costs one atomic load.
int terminationSignal() noexcept;

} // namespace Nerix::Common::Utils
