#include "Common/IO/OpenSSLInit.h"

#include "Common/Utils/Errors/Assert.h"
#include "Common/Utils/Singletons/SingletonsRegister.h"

#include <pthread.h>

namespace Nerix::Common::IO {

OpenSSLInit::OpenSSLInit() : m_locks(static_cast<std::size_t>(OpenSSLCompat::numLocks())) {
    OpenSSLCompat::initialize();
    for (auto& lock : m_locks) {
        lock = std::make_unique<boost::mutex>();
    }
    OpenSSLCompat::setLockingCallback(&lockingCallback);
    OpenSSLCompat::setThreadIdCallback(&threadIdCallback);
}

OpenSSLInit::~OpenSSLInit() {
    OpenSSLCompat::setLockingCallback(nullptr);
    OpenSSLCompat::setThreadIdCallback(nullptr);
    for (const auto& lock : m_locks) {
        NerixAssertMsg(lock->try_lock(), "Destroying object when mutex is still locked!");
        lock->unlock();
    }
}

void OpenSSLInit::lock(int n) {
    m_locks.at(static_cast<std::size_t>(n))->lock();
}

void OpenSSLInit::unlock(int n) {
    m_locks.at(static_cast<std::size_t>(n))->unlock();
}

void lockingCallback(int mode, int n, const char*, int) {
    const auto openSSL = Utils::SingletonsRegister::getSingletonsRegister().getService<OpenSSLInit>(
        "<unknown>", Utils::SINGLETON_OPENSSL_INITIALIZER);
    if ((mode & OpenSSLCompat::lockBit) != 0) {
        openSSL->lock(n);
    } else {
        openSSL->unlock(n);
    }
}

void threadIdCallback(OpenSSLCompat::ThreadId* id) {
    id->value = ::pthread_self();
}

} // namespace Nerix::Common::IO
