#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/ContentOpening.h"

#include "Common/Base/Descriptor.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"

#include <boost/core/noncopyable.hpp>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <string>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Nerix::FileScanners {

namespace {

/// While it lives, a blocking system call of the calling thread fails with EINTR every 20 ms. The termination
/// signals do not have that effect: another thread gets them, and calls that they interrupt are restarted.
class Interruptions : private boost::noncopyable {
public:
    static constexpr std::timespec period{0, 20'000'000};

    Interruptions() {
        struct sigaction action {};
        action.sa_handler = [](int) {}; // without SA_RESTART
        ::sigaction(signalNumber(), &action, nullptr);
        ::pthread_sigmask(SIG_UNBLOCK, &m_signal, &m_maskBefore);

        sigevent event{};
        event.sigev_notify = SIGEV_THREAD_ID;
        event.sigev_signo = signalNumber();
        event._sigev_un._tid =
            static_cast<pid_t>(::syscall(SYS_gettid)); // sigev_notify_thread_id, which glibc lacks
        m_isOn = ::timer_create(CLOCK_MONOTONIC, &event, &m_timer) == 0;
        if (m_isOn) {
            const itimerspec times{period, period};
            ::timer_settime(m_timer, 0, &times, nullptr);
        }
    }

    ~Interruptions() {
        const int error = errno;
        ::pthread_sigmask(SIG_BLOCK, &m_signal, nullptr);
        if (m_isOn) {
            ::timer_delete(m_timer);
        }
        // A signal that is still pending would interrupt a later call.
        constexpr std::timespec noTime{};
        while (::sigtimedwait(&m_signal, nullptr, &noTime) != -1) {
        }
        ::pthread_sigmask(SIG_SETMASK, &m_maskBefore, nullptr);
        errno = error;
    }

    /// Returns false if no timer could be created.
    bool areOn() const { return m_isOn; }

private:
    static int signalNumber() { return SIGRTMAX - 1; }
    static sigset_t onlySignal() {
        sigset_t set;
        ::sigemptyset(&set);
        ::sigaddset(&set, signalNumber());
        return set;
    }

    const sigset_t m_signal = onlySignal();
    sigset_t m_maskBefore{};
    timer_t m_timer{};
    bool m_isOn = false;
};

/// Waits until the lease on the file is broken.
int openUnderLease(const boost::filesystem::path& path) {
    // The open that waits must not encounter anything other than a regular file. A descriptor refers to the
    // file itself, even if another file replaces it at the path.
    const Common::Descriptor file(::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0) {
        return -1;
    }
    if (!S_ISREG(status.st_mode)) {
        errno = 0;
        return -1;
    }
    const std::string self = "/proc/self/fd/" + std::to_string(file.number());
    const Interruptions interruptions;
    // Without a timer the open must not wait in the kernel, so it has no place in the queue.
    const int flags = O_RDONLY | O_CLOEXEC | (interruptions.areOn() ? 0 : O_NONBLOCK);
    for (;;) {
        const int descriptor = ::open(self.c_str(), flags);
        const int reasonToWait = interruptions.areOn() ? EINTR : EWOULDBLOCK;
        if (descriptor != -1 || errno != reasonToWait || HashFunctions::StepObserver::currentShouldStop()) {
            return descriptor;
        }
        if (!interruptions.areOn()) {
            ::nanosleep(&Interruptions::period, nullptr);
        }
    }
}

} // namespace

int openContent(const boost::filesystem::path& path) {
    const int descriptor = openContentWithoutWaiting(path);
    // Another process holds a write lease (file servers take them). On a local file system, an open fails
    // with EWOULDBLOCK for no other reason, and leases exist only on regular files.
    return descriptor == -1 && errno == EWOULDBLOCK ? openUnderLease(path) : descriptor;
}

int openContentWithoutWaiting(const boost::filesystem::path& path) {
    return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
}

} // namespace Nerix::FileScanners
