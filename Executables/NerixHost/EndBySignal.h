#pragma once

#include <csignal>
#include <cstdlib>

namespace Nerix {

/// Ends the process by the signal, as if it had been neither caught nor ignored, so that the parent process
/// sees the signal. Does not flush standard streams.
[[noreturn]] inline void endBySignal(int signal) {
    std::signal(signal, SIG_DFL);
    sigset_t only;
    ::sigemptyset(&only);
    ::sigaddset(&only, signal);
    ::sigprocmask(SIG_UNBLOCK, &only, nullptr);
    std::raise(signal);
    std::abort(); // not reached: the default action of these signals ends the process
}

} // namespace Nerix
