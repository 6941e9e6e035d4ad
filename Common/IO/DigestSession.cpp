#include "Common/IO/DigestSession.h"

#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Singletons/SingletonsRegister.h"

namespace Nerix::Common::IO {

namespace {

thread_local DigestSession* currentSession = nullptr;

} // namespace

struct DigestSession::Registration {
    const Utils::SingletonPointer<OpenSSLInit> openSSL =
        Utils::SingletonsRegister::getSingletonsRegister().getService<OpenSSLInit>(
            "<unknown>", Utils::SINGLETON_OPENSSL_INITIALIZER);
};

DigestSession::DigestSession() {
    currentSession = this;
}

DigestSession::~DigestSession() {
    currentSession = nullptr;
}

DigestSession* DigestSession::current() {
    return currentSession;
}

void DigestSession::registerUser() {
    if (!m_registration) {
        m_registration = std::make_unique<Registration>();
    }
}

const EVP_MD* DigestSession::digest(const std::string& name) {
    if (!m_digest || m_digestName != name) { // retries after a failure
        m_digest.reset();
        m_digestName = name;
        m_digest = OpenSSLCompat::fetchDigest(name);
    }
    return m_digest.get();
}

OpenSSLCompat::DigestContext DigestSession::takeContext() {
    return m_context ? std::move(m_context) : OpenSSLCompat::makeDigestContext();
}

} // namespace Nerix::Common::IO
