#include "Common/IO/OpenSSLCompat.h"

#include <openssl/crypto.h>

#include <atomic>
#include <cstdlib>

namespace Nerix::Common::IO::OpenSSLCompat {

namespace {

std::atomic<LockingCallback> installedLockingCallback{nullptr};
std::atomic<ThreadIdCallback> installedThreadIdCallback{nullptr};

// The library also passes the file and line of the caller, which are not used here.
void* allocate(std::size_t size, const char*, int) {
    return std::malloc(size);
}
void* reallocate(void* block, std::size_t size, const char*, int) {
    return std::realloc(block, size);
}
void release(void* block, const char*, int) {
    std::free(block);
}

} // namespace

DigestContext makeDigestContext() {
    return DigestContext(EVP_MD_CTX_new());
}

Digest fetchDigest(const std::string& name) {
    // EVP_get_digestbyname accepts more spellings than EVP_MD_fetch. Unlike it, it rejects "null", a digest
    // that computes nothing.
    const EVP_MD* const named = EVP_get_digestbyname(name.c_str());
    return Digest(named == nullptr ? nullptr : EVP_MD_fetch(nullptr, EVP_MD_get0_name(named), nullptr));
}

void initialize() {
    useStandardAllocation(); // has no effect after the library's first allocation
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT | OPENSSL_INIT_NO_LOAD_CONFIG, nullptr);
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
