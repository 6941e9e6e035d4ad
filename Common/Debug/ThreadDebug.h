#pragma once

#include <boost/thread/thread_only.hpp>

#include <string>

namespace Nerix::Common::Debug {

/// Reads and sets the kernel's names of threads, which log records and system tools show. Remembers which
/// thread is the main one, and never renames it. Failures are logged and otherwise ignored.
class ThreadDebug {
public:
    /// Stores the id of the main thread. Call it once (asserted), before other threads exist.
    static void registerMainThreadId(boost::thread::id id);

    /// Returns the calling thread's kernel name, at most 15 characters; empty if the system call fails.
    static std::string GetThreadName();

    /// Returns name with each byte that is not a letter, a digit or '_' replaced by '_'. Does not shorten it.
    static std::string sanitizeThreadName(const char* name);

    /// Gives another thread the sanitized name. Fails if the name has more than 15 characters.
    static void SetThreadName(boost::thread& thread, const char* name);

    /// Gives the calling thread the sanitized name, which the kernel truncates to 15 characters.
    static void SetThreadName(const char* name);

private:
    static boost::thread::id m_mainThreadId;
};

} // namespace Nerix::Common::Debug
