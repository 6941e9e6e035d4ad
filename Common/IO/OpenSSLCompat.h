#pragma once

#include <openssl/evp.h>

#include <memory>
#include <string>

/// Replaces functions of OpenSSL 1.0 that the current library lacks. Since 1.1 the library locks by itself:
/// the locking and thread-id callbacks are never called, and setting them is a no-op macro. They are kept
/// here instead, so that the installed callbacks can still be queried. A build for 1.0 would forward to the
/// library, and look digests up instead of fetching them.
namespace Nerix::Common::IO::OpenSSLCompat {

/// Identity of a thread, as a thread-id callback reports it.
struct ThreadId {
    unsigned long value = 0;
};

/// mode has the bit lockBit to lock mutex number n, else to unlock it; file and line identify the caller.
using LockingCallback = void (*)(int mode, int n, const char* file, int line);
using ThreadIdCallback = void (*)(ThreadId* id);

constexpr int lockBit = 1;

/// Sets the library up before anything else uses it; later calls change nothing. It allocates with malloc. It
/// registers no exit handler, because a worker may still hash when the process ends. It reads no
/// configuration file, because values must not depend on one: a machine whose configuration allows only
/// certain providers, such as FIPS, does not restrict the digests.
void initialize();

/// Returns the number of locks that the library requires.
int numLocks();

void setLockingCallback(LockingCallback callback);
LockingCallback getLockingCallback();

void setThreadIdCallback(ThreadIdCallback callback);
ThreadIdCallback getThreadIdCallback();

/// Asks the library to allocate with malloc, realloc and free. It agrees only before its first allocation;
/// later calls change nothing.
void useStandardAllocation();

struct DigestContextDeleter {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using DigestContext = std::unique_ptr<EVP_MD_CTX, DigestContextDeleter>;

/// Returns a context to start a digest with, or null if there is no memory.
DigestContext makeDigestContext();

struct DigestDeleter {
    void operator()(EVP_MD* digest) const { EVP_MD_free(digest); }
};
using Digest = std::unique_ptr<EVP_MD, DigestDeleter>;

/// Returns the library's implementation of a digest, "md5", "sha1" or any other that it knows, or null for an
/// unknown name; passing that null to EVP_DigestInit_ex with a new or reset context adds the reason to the
/// error queue.
Digest fetchDigest(const std::string& name);

} // namespace Nerix::Common::IO::OpenSSLCompat
