#include "Common/IO/HashSinkScope.h"

#include "Common/IO/DigestLookup.h"
#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Singletons/SingletonsRegister.h"

namespace Nerix::Common::IO {

namespace {

thread_local HashSinkScope* currentScope = nullptr;

} // namespace

struct HashSinkScope::User {
    const Utils::SingletonPointer<OpenSSLInit> openSSL =
        Utils::SingletonsRegister::getSingletonsRegister().getService<OpenSSLInit>(
            "<unknown>", Utils::SINGLETON_OPENSSL_INITIALIZER);
};

HashSinkScope::HashSinkScope() {
    currentScope = this;
}

HashSinkScope::~HashSinkScope() {
    currentScope = nullptr;
}

HashSinkScope* HashSinkScope::current() {
    return currentScope;
}

void HashSinkScope::use() {
    if (!m_user) {
        m_user = std::make_unique<User>();
    }
}

OpenSSLCompat::DigestContext HashSinkScope::takeContext() {
    return m_context ? std::move(m_context) : OpenSSLCompat::DigestContext(EVP_MD_CTX_new());
}

const EVP_MD* HashSinkScope::lookUp(const std::string& digestName) {
    if (m_digest == nullptr || m_digestName != digestName) { // a failed look-up may succeed later
        m_digest = nullptr;
        m_digestName = digestName;
        m_digest = lookUpDigest(digestName);
    }
    return m_digest;
}

} // namespace Nerix::Common::IO
