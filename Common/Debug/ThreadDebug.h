#pragma once

#include <boost/thread/thread_only.hpp>

#include <string>

namespace Nerix::Common::Debug {

/// The kernel's names of threads, as log records and system tools show them, and which thread is the main
/// one. The main thread is never renamed here. Failures are logged and otherwise ignored.
class ThreadDebug {
public:
    /// Remembers the main thread. Call it before other threads exist; may be called only once (asserted).
    static void registerMainThreadId(boost::thread::id id);

    /// The calling thread's kernel name, at most 15 characters; empty if the kernel call fails.
    static std::string GetThreadName();

    /// name with '_' in place of each byte that is not a letter, a digit or '_'. Not shortened.
    static std::string sanitizeThreadName(const char* name);

    /// Names another thread with the sanitised name. The kernel refuses more than 15 characters.
    static void SetThreadName(boost::thread& thread, const char* name);

    /// Names the calling thread with the sanitised name, of which the kernel keeps 15 characters.
    static void SetThreadName(const char* name);

private:
    static boost::thread::id m_mainThreadId;
};

} // namespace Nerix::Common::Debug
