#include "Common/IO/DigestLookup.h"

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

const EVP_MD* fetchOnce(const std::string& name) {
    // Never destroyed: a thread may still be hashing while static objects go.
    static FetchedDigests& fetched = *new FetchedDigests();
    const std::lock_guard<std::mutex> lock(fetched.mutex);
    const auto known = fetched.byName.find(name);
    if (known != fetched.byName.end()) {
        return known->second.get();
    }
    // By name first: that knows more spellings than a fetch, and not the digest "null".
    const EVP_MD* const named = EVP_get_digestbyname(name.c_str());
    if (named == nullptr) {
        return nullptr;
    }
    std::unique_ptr<EVP_MD, DigestDeleter> digest(EVP_MD_fetch(nullptr, EVP_MD_get0_name(named), nullptr));
    return digest ? fetched.byName.emplace(name, std::move(digest)).first->second.get() : nullptr;
}

} // namespace

const EVP_MD* lookUpDigest(const std::string& name) {
    // A thread asks for the same digest over and over: its last answer saves the lock and the search.
    struct Answer {
        std::string name;
        const EVP_MD* digest = nullptr;
    };
    thread_local Answer last;
    if (last.digest == nullptr || last.name != name) {
        last = {name, fetchOnce(name)};
    }
    return last.digest;
}

} // namespace Nerix::Common::IO
