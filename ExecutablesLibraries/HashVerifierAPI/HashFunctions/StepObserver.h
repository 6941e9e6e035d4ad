#pragma once

#include "Common/Utils/TerminationSignals.h"

#include <boost/core/noncopyable.hpp>

namespace Nerix::HashFunctions {

/// Hears of the digest steps of the thread that makes it while it lives; one made later on that thread takes
/// its place meanwhile. Destroy it on the same thread, the last made first. Steps of a thread without an
/// observer belong to no run and are reported to nobody.
class StepObserver : private boost::noncopyable {
public:
    /// A step over bytes of data was taken. What this throws leaves the step.
    virtual void onStep(unsigned long long bytes) = 0;

    /// The content of the entry in progress could not be read to its end; error is the errno. What was read counts.
    virtual void onReadError(int error) noexcept = 0;

    /// Whether what is long should end early: a signal ends the process, or nobody wants the value any more.
    /// Asked between the reads of a content, so it also tells that time passes.
    virtual bool mustStop() noexcept { return Common::Utils::terminationSignal() != 0; }

    /// What the calling thread's observer says, or would.
    static bool isStopWanted() {
        return m_current != nullptr ? m_current->mustStop() : Common::Utils::terminationSignal() != 0;
    }

    /// For the scanners: passes a read error to the calling thread's observer, if there is one.
    static void reportReadError(int error) {
        if (m_current != nullptr) {
            m_current->onReadError(error);
        }
    }

    /// For the hash functions: tells the calling thread's observer, if there is one.
    static void report(unsigned long long bytes) {
        if (m_current != nullptr) {
            m_current->onStep(bytes);
        }
    }

protected:
    StepObserver() : m_former(m_current) { m_current = this; }
    ~StepObserver() { m_current = m_former; }

private:
    static inline thread_local StepObserver* m_current = nullptr;
    StepObserver* const m_former;
};

} // namespace Nerix::HashFunctions
