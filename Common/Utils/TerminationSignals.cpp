#include "Common/Utils/TerminationSignals.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <ctime>

namespace Nerix::Common::Utils {

namespace {

constexpr int caught[] = {SIGINT, SIGTERM, SIGHUP};

std::atomic<int> remembered{0};
std::atomic<unsigned int> timeOfFirst{0}; ///< when the first signal arrived, in milliseconds(); 0 before that
static_assert(ATOMIC_INT_LOCK_FREE == 2, "always lock-free, because a signal handler writes them");

/// Returns the monotonic time, which wraps around.
unsigned int milliseconds() {
    std::timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<unsigned int>(now.tv_sec) * 1000U + static_cast<unsigned int>(now.tv_nsec / 1'000'000);
}

/// Handles a signal. Async-signal-safe.
void remember(int signal) {
    constexpr unsigned int maxRepeatMilliseconds = 200;
    const unsigned int now = std::max(milliseconds(), 1U);
    unsigned int first = 0;
    if (timeOfFirst.compare_exchange_strong(first, now)) {
        remembered = signal;
    } else if (now - first > maxRepeatMilliseconds) {
        std::signal(signal, SIG_DFL);
        ::raise(signal); // delivered when the handler returns
    }
}

void endByRememberedSignal() {
    if (const int signal = terminationSignal()) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
}

} // namespace

void catchTerminationSignals() {
    std::atexit(&endByRememberedSignal);
    struct sigaction action {};
    action.sa_handler = &remember;
    action.sa_flags = SA_RESTART; // otherwise an interrupted call would look like a failed one
    for (const int signal : caught) {
        ::sigaddset(&action.sa_mask, signal);
    }
    for (const int signal : caught) {
        struct sigaction current {};
        ::sigaction(signal, nullptr, &current);
        if (current.sa_handler != SIG_IGN) {
            ::sigaction(signal, &action, nullptr);
        }
    }
}

int terminationSignal() noexcept {
    return remembered.load(std::memory_order_relaxed);
}

} // namespace Nerix::Common::Utils
