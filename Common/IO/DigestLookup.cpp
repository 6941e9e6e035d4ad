#include "Common/IO/DigestLookup.h"

#include <openssl/crypto.h>

#include <map>
#include <memory>
#include <mutex>

namespace Nerix::Common::IO {

namespace {

struct DigestDeleter {
    void operator()(EVP_MD* digest) const { EVP_MD_free(digest); }
};

struct FetchedDigests {
    // The library cleans up at exit in reverse order of start: started here, it outlives this object.
    FetchedDigests() { OPENSSL_init_crypto(0, nullptr); }

    std::mutex mutex;
    std::map<std::string, std::unique_ptr<EVP_MD, DigestDeleter>> byName;
};

} // namespace

const EVP_MD* lookUpDigest(const std::string& name) {
    static FetchedDigests fetched;
    const std::lock_guard<std::mutex> lock(fetched.mutex);
    const auto known = fetched.byName.find(name);
    if (known != fetched.byName.end()) {
        return known->second.get();
    }
    std::unique_ptr<EVP_MD, DigestDeleter> digest(EVP_MD_fetch(nullptr, name.c_str(), nullptr));
    return digest ? fetched.byName.emplace(name, std::move(digest)).first->second.get() : nullptr;
}

} // namespace Nerix::Common::IO
