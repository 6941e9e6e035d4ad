#pragma once

#include <openssl/evp.h>

#include <memory>

/// What differs between OpenSSL 1.0 and today's library, in one place. Since 1.1 the library locks by
/// itself: the locking and thread-id callbacks are never called, and setting them is a no-op macro. They are
/// kept here instead, so that what was installed can still be asked for. A build for 1.0 would forward to
/// the library.
namespace Nerix::Common::IO::OpenSSLCompat {

/// Identity of a thread, as a thread-id callback reports it.
struct ThreadId {
    unsigned long value = 0;
};

/// mode has the bit lockBit to lock mutex number n, else to unlock it; file and line tell who asks.
using LockingCallback = void (*)(int mode, int n, const char* file, int line);
using ThreadIdCallback = void (*)(ThreadId* id);

constexpr int lockBit = 1;

/// Sets the library up before anything else uses it: it allocates with malloc and registers no exit handler,
/// because a worker may still hash when the process ends. Later calls change nothing.
void initialize();

/// How many locks the library wants.
int numLocks();

void setLockingCallback(LockingCallback callback);
LockingCallback getLockingCallback();

void setThreadIdCallback(ThreadIdCallback callback);
ThreadIdCallback getThreadIdCallback();

/// Asks the library to allocate with malloc, realloc and free. It agrees only before its first allocation;
/// later calls change nothing.
void useStandardAllocation();

/// Keeps the context for the calling thread's next digest: making one costs about as much as hashing a short
/// text. Destroy it before its thread exits: the deleter writes a thread_local.
struct DigestContextRecycler {
    void operator()(EVP_MD_CTX* context) const;
};
using DigestContext = std::unique_ptr<EVP_MD_CTX, DigestContextRecycler>;

/// A context to start a digest with, whatever was in it before; null when there is no memory.
DigestContext makeDigestContext();

} // namespace Nerix::Common::IO::OpenSSLCompat
