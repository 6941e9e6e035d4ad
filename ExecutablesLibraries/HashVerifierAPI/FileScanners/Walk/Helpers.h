#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/LackOfResources.h"

#include <boost/core/noncopyable.hpp>

#include <atomic>
#include <chrono>
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
    std::size_t initialThreads;   ///< of these, those that start once the root was examined
    std::size_t cores;            ///< that these threads can use
    std::size_t entriesPerThread; ///< that each of them examines at a time
};

/// Plans a walk for a hash function with that many lanes. One thread per core, at most 8. On two or three
/// cores, further threads make them 4 if the worker waits for a disk, so that several can wait at once; with
/// warm files they would only spread the files over more lanes than the cores can keep busy. The custom
/// parameter "hashVerifierThreads" sets another number, from 1 to 8, which start at once. Leaves enough file
/// descriptors for the settings store and the logs, which must not fail because of the walk.
ThreadPlan planThreads(std::size_t lanes);

/// Tells whether a thread runs or waits.
class RunningTime {
public:
    /// Call it often, always on the same thread. Returns true if the thread was waiting for more than half of
    /// the time since the last measurement, which is taken every few calls.
    bool wasMostlyWaiting();

private:
    std::size_t m_calls = 0;
    std::chrono::nanoseconds m_running{0}; ///< processor time of the thread at the last measurement
    std::chrono::nanoseconds m_total{0};   ///< the time then
};

/// The threads that examine entries beside the worker. All functions but areStopping are for the worker's
/// thread.
class Helpers : private boost::noncopyable {
public:
    /// queue: the one from which the helpers take entries.
    explicit Helpers(ReportQueue& queue);
    ~Helpers();

    /// Starts the plan's helpers, which call work, with all signals blocked and a stack of 1 MiB; fewer, or
    /// none, if the system cannot start so many. Those that are not started at once are left to
    /// startFurtherIfWaiting.
    void start(const ThreadPlan& plan, std::function<void()> work);

    /// Call it often while the worker examines entries. Starts the helpers that are left if the worker was
    /// not running for more than half of the time since the last few calls: it waits for a disk, or for a
    /// core that it has to share.
    void startFurtherIfWaiting();

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
    void startUpTo(std::size_t count);

    ReportQueue& m_queue;
    std::atomic<bool> m_areStopping{false};
    std::function<void()> m_work;
    std::size_t m_count = 0; ///< of helpers, once all are started
    std::vector<std::unique_ptr<boost::thread>> m_threads;
    RunningTime m_workersTime;
};

} // namespace Nerix::FileScanners
