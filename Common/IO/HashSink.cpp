#include "Common/IO/HashSink.h"

#include "Common/IO/DigestSession.h"
#include "Common/IO/OpenSSLException.h"
#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Singletons/SingletonsRegister.h"

#include <openssl/evp.h>

namespace Nerix::Common::IO {

using Utils::errinfo_description;
using Utils::errinfo_subject;
using Utils::Encoding::OpenSSLException;

namespace {

const std::string userName = "<unknown>";

/// Registers a user of OpenSSLInit: the thread's session if there is one, otherwise the sink. Returns a
/// handle for the sink, which is empty if there is a session.
Utils::SingletonPointer<OpenSSLInit> useOpenSSL() {
    if (DigestSession* const session = DigestSession::current()) {
        session->registerUser();
        return {userName, nullptr};
    }
    return Utils::SingletonsRegister::getSingletonsRegister().getService<OpenSSLInit>(
        userName, Utils::SINGLETON_OPENSSL_INITIALIZER);
}

} // namespace

HashSink::HashSink(const std::string& digestName) : m_openSSL(useOpenSSL()), m_digestName(digestName) {
    OpenSSLCompat::useStandardAllocation();
    OpenSSL_add_all_digests();
    OpenSSLCompat::Digest fetched; // need not outlive the constructor: the context holds a reference
    const EVP_MD* digest = nullptr;
    if (DigestSession* const session = DigestSession::current()) {
        digest = session->digest(digestName);
        m_context = session->takeContext();
    } else {
        fetched = OpenSSLCompat::fetchDigest(digestName);
        digest = fetched.get();
        m_context = OpenSSLCompat::makeDigestContext();
    }
    if (digest == nullptr) {
        // Given a null digest, the library would restart the context's previous one.
        EVP_MD_CTX_reset(m_context.get());
    }
    if (!m_context || EVP_DigestInit_ex(m_context.get(), digest, nullptr) != 1) {
        m_context.reset();
        BOOST_THROW_EXCEPTION(OpenSSLException()
                              << errinfo_description("Can't initialize digest.") << errinfo_subject(*this));
    }
}

HashSink::~HashSink() {
    if (DigestSession* const session = DigestSession::current()) {
        session->keepContext(std::move(m_context));
    }
}

void HashSink::writeChunk(const std::uint8_t* data, std::size_t length) {
    throwIfEndOfDataMarked();
    if (EVP_DigestUpdate(m_context.get(), data, length) != 1) {
        BOOST_THROW_EXCEPTION(OpenSSLException()
                              << errinfo_description("Digest update failed.") << errinfo_subject(*this));
    }
}

void HashSink::markEndOfData() {
    throwIfEndOfDataMarked();
    m_endOfData = true;
    m_hash.resize(EVP_MAX_MD_SIZE);
    unsigned int length = 0;
    if (EVP_DigestFinal_ex(m_context.get(), m_hash.data(), &length) != 1) {
        BOOST_THROW_EXCEPTION(OpenSSLException() << errinfo_description("Digest finalization failed.")
                                                 << errinfo_subject(*this));
    }
    m_hash.resize(length);
}

const std::vector<std::uint8_t>& HashSink::getHash() {
    if (!m_endOfData) {
        markEndOfData();
    }
    return m_hash;
}

std::string HashSink::debugName() const {
    return "HashSink(" + m_digestName + ")";
}

} // namespace Nerix::Common::IO
