#pragma once

#include <boost/core/noncopyable.hpp>

namespace Nerix::HashFunctions {

/// Hears of the digest steps of the thread that makes it, for as long as it lives; one made later on that thread
/// takes its place meanwhile. Make and destroy it on the same thread, the last made first. The steps of a thread
/// without an observer are nobody's work in progress: they are reported to nobody.
class StepObserver : private boost::noncopyable {
public:
    /// A step over bytes of data was taken. What this throws leaves the step.
    virtual void onStep(unsigned long long bytes) = 0;

    /// For the hash functions: tells the calling thread's observer, if there is one.
    static void report(unsigned long long bytes);

protected:
    StepObserver();
    ~StepObserver();

private:
    StepObserver* const m_former;
};

} // namespace Nerix::HashFunctions
