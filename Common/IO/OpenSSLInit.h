#pragma once

#include "Common/IO/OpenSSLCompat.h"
#include "Common/Utils/Singletons/RegisterableSingleton.h"

#include <boost/thread/mutex.hpp>

#include <memory>
#include <vector>

namespace Nerix::Common::IO {

/// Sets up the crypto library for several threads: creates a mutex for each of its lock numbers, and installs
/// the callbacks that lock them and identify threads. The SingletonsRegister contains it under
/// SINGLETON_OPENSSL_INITIALIZER as long as there is a ProgramSession.
class OpenSSLInit : public Utils::RegisterableSingleton {
public:
    /// Initializes the library (OpenSSLCompat::initialize), creates the mutexes, then installs the callbacks.
    /// Throws boost::thread_resource_error, before installing them, if a mutex cannot be created.
    OpenSSLInit();

    /// Removes the callbacks. Asserts that no mutex is locked, because no thread may be inside the library.
    ~OpenSSLInit() override;

    /// Locks or unlocks mutex n, which must be below OpenSSLCompat::numLocks(). lock throws boost::lock_error
    /// if the system call fails.
    void lock(int n);
    void unlock(int n);

private:
    std::vector<std::unique_ptr<boost::mutex>> m_locks;
};

/// Locks or unlocks mutex n of the OpenSSLInit in the SingletonsRegister. Asserts that there is one.
void lockingCallback(int mode, int n, const char* file, int line);

/// Stores the id of the calling thread in *id.
void threadIdCallback(OpenSSLCompat::ThreadId* id);

} // namespace Nerix::Common::IO
