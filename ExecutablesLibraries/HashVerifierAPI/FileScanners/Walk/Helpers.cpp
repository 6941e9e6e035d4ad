#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Helpers.h"

#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/ReportQueue.h"

#include <boost/optional.hpp>
#include <boost/thread/thread.hpp>

#include <algorithm>
#include <csignal>
#include <ctime>
#include <utility>

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

namespace Nerix::FileScanners {

namespace {

constexpr int maxThreads = 8;

std::size_t availableCores() {
    cpu_set_t cores{};
    return ::sched_getaffinity(0, sizeof cores, &cores) == 0 ? static_cast<std::size_t>(CPU_COUNT(&cores))
                                                             : 1;
}

/// Returns the number of threads that the test parameters set, if they set one.
boost::optional<std::size_t> requestedThreads() {
    if (!Common::DebugAndTestParameters::loaded()) {
        return boost::none;
    }
    const boost::optional<int> requested =
        Common::getDebugAndTestParameters().getCustomIntParam("hashVerifierThreads");
    return requested ? boost::optional<std::size_t>(std::clamp(*requested, 1, maxThreads)) : boost::none;
}

/// Returns the number of files that all threads together may have open.
std::size_t availableDescriptors() {
    constexpr rlim_t reserved = 32;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return 0;
    }
    return static_cast<std::size_t>(limit.rlim_cur > reserved ? limit.rlim_cur - reserved : 0);
}

std::chrono::nanoseconds now(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Blocks all signals on this thread, so that threads started during its lifetime inherit the mask and
/// receive none.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t m_before{};
};

} // namespace

ThreadPlan planThreads(std::size_t lanes) {
    constexpr std::size_t minDescriptorsPerHelper = 2; // the content of a file, a directory that is listed
    const std::size_t available = availableDescriptors();
    const std::size_t cores = std::min<std::size_t>(availableCores(), maxThreads);
    const boost::optional<std::size_t> requested = requestedThreads();
    const std::size_t wanted = requested.value_or(cores > 1 ? std::max<std::size_t>(cores, 4) : 1);
    const std::size_t threads = std::min(wanted, 1 + available / minDescriptorsPerHelper);
    return {threads, std::min(threads, requested.value_or(cores)), std::min(threads, cores),
            std::clamp<std::size_t>(available / threads, minDescriptorsPerHelper, lanes + 1) - 1};
}

bool RunningTime::wasMostlyWaiting() {
    constexpr std::size_t callsPerMeasurement = 16; // reading the clocks costs more than most calls
    if (++m_calls % callsPerMeasurement != 0) {
        return false;
    }
    const std::chrono::nanoseconds runningBefore = std::exchange(m_running, now(CLOCK_THREAD_CPUTIME_ID));
    const std::chrono::nanoseconds totalBefore = std::exchange(m_total, now(CLOCK_MONOTONIC));
    const bool isFirst = totalBefore == std::chrono::nanoseconds(0);
    return !isFirst && 2 * (m_running - runningBefore) < m_total - totalBefore;
}

Helpers::Helpers(ReportQueue& queue) : m_queue(queue) {}

Helpers::~Helpers() {
    stop();
}

void Helpers::start(const ThreadPlan& plan, std::function<void()> work) {
    m_work = std::move(work);
    m_count = plan.threads - 1;
    startUpTo(plan.initialThreads - 1);
}

void Helpers::startFurtherIfWaiting() {
    if (m_threads.size() < m_count && m_workersTime.wasMostlyWaiting()) {
        startUpTo(m_count);
    }
}

void Helpers::startUpTo(std::size_t count) {
    const SignalsBlocked blocked;
    boost::thread::attributes attributes;
    attributes.set_stack_size(std::size_t{1} << 20U);
    try {
        m_threads.reserve(count);
        while (m_threads.size() < count) {
            m_threads.push_back(std::make_unique<boost::thread>(attributes, m_work));
        }
    } catch (const std::exception&) { // fewer helpers, or none, are enough
        m_count = m_threads.size();
    }
}

void Helpers::stop() noexcept {
    const boost::this_thread::disable_interruption noInterruption; // join would throw
    m_areStopping = true;
    m_count = 0;
    m_queue.stop();
    for (const auto& thread : m_threads) {
        thread->join();
    }
    m_threads.clear();
}

} // namespace Nerix::FileScanners
