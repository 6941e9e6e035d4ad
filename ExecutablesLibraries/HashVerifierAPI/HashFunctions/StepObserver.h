#pragma once

#include "Common/Utils/TerminationSignals.h"

#include <boost/core/noncopyable.hpp>

namespace Nerix::HashFunctions {

/// Notified of each digest step that IHashFunction::apply takes on the thread that created it; applyChains
/// does not report all of its steps. Observers nest: the newest one on a thread is notified until it is
/// destroyed. Destroy them on the same thread, in reverse order. Without an observer, steps are not reported.
class StepObserver : private boost::noncopyable {
public:
    /// Called after a step over `bytes` bytes. Exceptions propagate to the caller of the step.
    virtual void onStep(unsigned long long bytes) = 0;

    /// Called if the content of the entry in progress could not be read to its end; error is the errno. What
    /// was read is hashed.
    virtual void onReadError(int error) noexcept = 0;

    /// Returns true if a long operation should stop early, because of a signal or because the value is no
    /// longer needed. Called before each read of a file and while waiting for a lease.
    virtual bool shouldStop() noexcept { return Common::Utils::terminationSignal() != 0; }

    /// Returns shouldStop() of the thread's observer; without one, returns true if a termination signal has
    /// arrived.
    static bool currentShouldStop() {
        return m_current != nullptr ? m_current->shouldStop() : Common::Utils::terminationSignal() != 0;
    }

    /// Passes a read error to the calling thread's observer, if there is one. Called by the scanners.
    static void reportReadError(int error) {
        if (m_current != nullptr) {
            m_current->onReadError(error);
        }
    }

    /// Passes a step to the calling thread's observer, if there is one. Called by the hash functions.
    static void report(unsigned long long bytes) {
        if (m_current != nullptr) {
            m_current->onStep(bytes);
        }
    }

protected:
    StepObserver() : m_previous(m_current) { m_current = this; }
    ~StepObserver() { m_current = m_previous; }

private:
    static inline thread_local StepObserver* m_current = nullptr;
    StepObserver* const m_previous;
};

} // namespace Nerix::HashFunctions
