#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Helpers.h"

#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/ReportQueue.h"

#include <boost/thread/thread.hpp>

#include <algorithm>
#include <csignal>

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

namespace Nerix::FileScanners {

namespace {

constexpr std::size_t maxThreads = 8;

std::size_t availableCores() {
    cpu_set_t cores{};
    return ::sched_getaffinity(0, sizeof cores, &cores) == 0 ? static_cast<std::size_t>(CPU_COUNT(&cores))
                                                             : 1;
}

std::size_t wantedThreads(std::size_t cores) {
    std::size_t threads = cores > 1 ? std::max<std::size_t>(cores, 4) : 1;
    if (Common::DebugAndTestParameters::loaded()) {
        const int wanted = Common::getDebugAndTestParameters().getCustomIntParam("hashVerifierThreads",
                                                                                 static_cast<int>(threads));
        threads = static_cast<std::size_t>(std::max(wanted, 1));
    }
    return std::min(threads, maxThreads);
}

/// Returns how many files the threads may have open together.
std::size_t availableDescriptors() {
    constexpr rlim_t reserved = 32;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return 0;
    }
    return static_cast<std::size_t>(limit.rlim_cur > reserved ? limit.rlim_cur - reserved : 0);
}

/// Blocks all signals on this thread, so that threads started meanwhile inherit the mask and receive none.
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
    constexpr std::size_t leastPerHelper = 2; // the content of one file, a directory that is listed
    const std::size_t available = availableDescriptors();
    const std::size_t cores = availableCores();
    const std::size_t threads = std::min(wantedThreads(cores), 1 + available / leastPerHelper);
    return {threads, std::min(threads, cores),
            std::clamp<std::size_t>(available / threads, leastPerHelper, lanes + 1) - 1};
}

Helpers::Helpers(ReportQueue& queue) : m_queue(queue) {}

Helpers::~Helpers() {
    stop();
}

void Helpers::start(std::size_t count, const std::function<void()>& work) {
    const SignalsBlocked blocked;
    boost::thread::attributes attributes;
    attributes.set_stack_size(std::size_t{1} << 20U);
    try {
        m_threads.reserve(count);
        while (m_threads.size() < count) {
            m_threads.push_back(std::make_unique<boost::thread>(attributes, work));
        }
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): fewer helpers, or none, are enough
    }
}

void Helpers::stop() noexcept {
    const boost::this_thread::disable_interruption noInterruption; // join would throw
    m_areStopping = true;
    m_queue.stop();
    for (const auto& thread : m_threads) {
        thread->join();
    }
    m_threads.clear();
}

} // namespace Nerix::FileScanners
