#pragma once

#include <openssl/evp.h>

#include <memory>
#include <string>

/// Hides the differences between versions of OpenSSL. Since 1.1 the library does its own locking: it never
/// calls the locking and thread-id callbacks, and setting them is a no-op macro. The callbacks are therefore
/// stored here, so that they can be queried. This implementation needs 3.0. One for 1.0 would pass the
/// callbacks to the library; one for 1.0 or 1.1 would look up digests instead of fetching them.
namespace Nerix::Common::IO::OpenSSLCompat {

/// The identity of a thread, as set by a thread-id callback.
struct ThreadId {
    unsigned long value = 0;
};

/// Locks mutex n if mode contains lockBit, otherwise unlocks it. file and line identify the caller.
using LockingCallback = void (*)(int mode, int n, const char* file, int line);
using ThreadIdCallback = void (*)(ThreadId* id);

constexpr int lockBit = 1;

/// Initializes the library. Call it before anything else uses the library; later calls have no effect. The
/// library then allocates with malloc. It does not register an exit handler, because a worker may still be
/// hashing when the process ends. It does not read a configuration file, because values must not depend on
/// one: a configuration that allows only certain providers, such as FIPS, would restrict the digests.
void initialize();

/// Returns the number of locks that the library needs.
int numLocks();

void setLockingCallback(LockingCallback callback);
LockingCallback getLockingCallback();

void setThreadIdCallback(ThreadIdCallback callback);
ThreadIdCallback getThreadIdCallback();

/// Makes the library allocate with malloc, realloc and free. Has no effect after its first allocation.
void useStandardAllocation();

struct DigestContextDeleter {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using DigestContext = std::unique_ptr<EVP_MD_CTX, DigestContextDeleter>;

/// Returns a new context, or null if memory is exhausted.
DigestContext makeDigestContext();

struct DigestDeleter {
    void operator()(EVP_MD* digest) const { EVP_MD_free(digest); }
};
using Digest = std::unique_ptr<EVP_MD, DigestDeleter>;

/// Returns the library's implementation of the digest called name ("md5", "sha1", ...), or null if the
/// library does not support it. If that null is passed to EVP_DigestInit_ex with a new or reset context,
/// EVP_DigestInit_ex adds the reason to the error queue.
Digest fetchDigest(const std::string& name);

} // namespace Nerix::Common::IO::OpenSSLCompat
