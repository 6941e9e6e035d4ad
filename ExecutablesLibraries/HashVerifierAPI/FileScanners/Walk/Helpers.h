#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/LackOfResources.h"

#include <boost/core/noncopyable.hpp>

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace boost {
class thread;
}

namespace Nerix::FileScanners {

class ReportQueue;

struct ThreadPlan {
    std::size_t threads;          ///< of the walk, the worker included
    std::size_t cores;            ///< that these threads can use
    std::size_t entriesPerThread; ///< that each of them examines at a time
};

/// Plans a walk for a hash function with that many lanes. One thread per core, but at least 4 on more than
/// one core, so that several can wait for a cold disk at once, and at most 8; the custom parameter
/// "hashVerifierThreads" sets another number, from 1 to 8. Leaves enough file descriptors for the settings
/// store and the logs, which must not fail because of the walk.
ThreadPlan planThreads(std::size_t lanes);

/// The threads that examine entries beside the worker. All functions but isStopping are for the worker's
/// thread.
class Helpers : private boost::noncopyable {
public:
    /// queue: the one from which the helpers take entries.
    explicit Helpers(ReportQueue& queue);
    ~Helpers();

    /// Starts threads that call work, with all signals blocked and a stack of 1 MiB; fewer, or none, if the
    /// system cannot start so many.
    void start(std::size_t count, const std::function<void()>& work);

    /// Stops the queue and waits until the helpers have returned from work.
    void stop() noexcept;

    bool areRunning() const { return !m_threads.empty(); }

    /// Runs the action. If it fails for lack of memory or file descriptors, which running helpers may hold,
    /// stops them and runs it once more.
    template <class Action>
    void retryWithout(Action action) {
        try {
            action();
        } catch (...) {
            if (!areRunning() || !isLackOfResources()) {
                throw;
            }
            stop();
            action();
        }
    }

    /// Returns true once stop was called. Thread-safe.
    bool areStopping() const { return m_areStopping; }

private:
    ReportQueue& m_queue;
    std::atomic<bool> m_areStopping{false};
    std::vector<std::unique_ptr<boost::thread>> m_threads;
};

} // namespace Nerix::FileScanners
