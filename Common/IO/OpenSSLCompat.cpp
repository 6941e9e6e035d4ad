#include "Common/IO/OpenSSLCompat.h"

#include <openssl/crypto.h>

#include <atomic>
#include <cstdlib>

namespace Nerix::Common::IO::OpenSSLCompat {

namespace {

std::atomic<LockingCallback> installedLockingCallback{nullptr};
std::atomic<ThreadIdCallback> installedThreadIdCallback{nullptr};

// The library's own signatures, with the source position of the caller, which nobody needs.
void* allocate(std::size_t size, const char*, int) {
    return std::malloc(size);
}
void* reallocate(void* block, std::size_t size, const char*, int) {
    return std::realloc(block, size);
}
void release(void* block, const char*, int) {
    std::free(block);
}

struct ContextDeleter {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
thread_local std::unique_ptr<EVP_MD_CTX, ContextDeleter> spareContext;

} // namespace

void DigestContextRecycler::operator()(EVP_MD_CTX* context) const {
    spareContext.reset(context);
}

DigestContext makeDigestContext() {
    return DigestContext(spareContext ? spareContext.release() : EVP_MD_CTX_new());
}

void initialize() {
    useStandardAllocation(); // which the library takes only before its first allocation
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
}

int numLocks() {
    return CRYPTO_num_locks();
}

void setLockingCallback(LockingCallback callback) {
    installedLockingCallback = callback;
}
LockingCallback getLockingCallback() {
    return installedLockingCallback;
}

void setThreadIdCallback(ThreadIdCallback callback) {
    installedThreadIdCallback = callback;
}
ThreadIdCallback getThreadIdCallback() {
    return installedThreadIdCallback;
}

void useStandardAllocation() {
    CRYPTO_set_mem_functions(&allocate, &reallocate, &release);
}

} // namespace Nerix::Common::IO::OpenSSLCompat
