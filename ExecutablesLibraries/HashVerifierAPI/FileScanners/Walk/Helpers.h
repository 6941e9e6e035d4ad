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
    std::size_t initialThreads;   ///< of these, those that start once the root has been examined
    std::size_t cores;            ///< that these threads can use
    std::size_t entriesPerThread; ///< that each thread examines at a time
};

/// Plans a walk for a hash function with that many lanes. One thread per core, at most 8. On two or three
/// cores, the number grows to 4 if the worker waits for a disk, so that several threads can wait at the same
/// time. It does not if the files are cached, because more threads would then only leave more lanes idle. The
/// test parameter "hashVerifierThreads" sets another number, from 1 to 8, of threads that all start
/// immediately. Leaves enough file descriptors for the settings store and the logs, which must not fail
/// because of the walk.
ThreadPlan planThreads(std::size_t lanes);

/// Measures how much of the time a thread waits.
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

/// The threads that examine entries in addition to the worker. Call all functions except areStopping on the
/// worker's thread.
class Helpers : private boost::noncopyable {
public:
    /// queue: from which the helpers take entries.
    explicit Helpers(ReportQueue& queue);
    ~Helpers();

    /// Starts the plan's initial helpers, which call work, with all signals blocked and a stack of 1 MiB;
    /// fewer, or none, if the system cannot start so many. startFurtherIfWaiting starts the others.
    void start(const ThreadPlan& plan, std::function<void()> work);

    /// Call it often while the worker examines entries. Starts the remaining helpers if the worker spent more
    /// than half of the time over the last few calls waiting, for a disk or for a core that it has to share.
    void startFurtherIfWaiting();

    /// Stops the queue and waits until the helpers have returned from work.
    void stop() noexcept;

    bool areRunning() const { return !m_threads.empty(); }

    /// Runs the action. If it fails because memory or file descriptors ran out, which running helpers may
    /// hold, stops the helpers and runs it once more.
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
