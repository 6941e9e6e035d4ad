#include "Common/IO/DigestLookup.h"

#include "Common/Base/NoDestructor.h"

#include <map>
#include <memory>
#include <mutex>

namespace Nerix::Common::IO {

namespace {

struct DigestDeleter {
    void operator()(EVP_MD* digest) const { EVP_MD_free(digest); }
};

struct FetchedDigests {
    std::mutex mutex;
    std::map<std::string, std::unique_ptr<EVP_MD, DigestDeleter>> byName;
};

} // namespace

const EVP_MD* lookUpDigest(const std::string& digestName) {
    static NoDestructor<FetchedDigests> fetched;
    const std::lock_guard<std::mutex> lock(fetched->mutex);
    const auto known = fetched->byName.find(digestName);
    if (known != fetched->byName.end()) {
        return known->second.get();
    }
    // EVP_get_digestbyname first: it accepts more spellings than EVP_MD_fetch, and does not accept "null".
    const EVP_MD* const named = EVP_get_digestbyname(digestName.c_str());
    if (named == nullptr) {
        return nullptr;
    }
    std::unique_ptr<EVP_MD, DigestDeleter> digest(EVP_MD_fetch(nullptr, EVP_MD_get0_name(named), nullptr));
    return digest ? fetched->byName.emplace(digestName, std::move(digest)).first->second.get() : nullptr;
}

} // namespace Nerix::Common::IO
