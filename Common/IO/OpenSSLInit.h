#pragma once

#include "Common/IO/OpenSSLCompat.h"
#include "Common/Utils/Singletons/RegisterableSingleton.h"

#include <boost/thread/mutex.hpp>

#include <memory>
#include <vector>

namespace Nerix::Common::IO {

/// The crypto library's set-up for use from several threads: a mutex per lock number of the library and the
/// two callbacks that lock them and tell threads apart. Kept in the singletons register under
/// SINGLETON_OPENSSL_INITIALIZER; a guard in main spans the whole run.
class OpenSSLInit : public Utils::RegisterableSingleton {
public:
    /// Sets the library up (OpenSSLCompat::initialize), makes the locks, then installs the callbacks. Throws
    /// boost::thread_resource_error when a mutex cannot be made; nothing is installed then.
    OpenSSLInit();

    /// Removes the callbacks. Asserts that no lock is held: no thread may still be inside the library.
    ~OpenSSLInit() override;

    /// n is below OpenSSLCompat::numLocks(). lock throws boost::lock_error when the system refuses.
    void lock(int n);
    void unlock(int n);

private:
    std::vector<std::unique_ptr<boost::mutex>> m_locks;
};

/// The installed callbacks. lockingCallback finds the OpenSSLInit in the singletons register, which asserts
/// that there is one.
void lockingCallback(int mode, int n, const char* file, int line);
void threadIdCallback(OpenSSLCompat::ThreadId* id);

} // namespace Nerix::Common::IO
