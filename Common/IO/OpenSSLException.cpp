#include "Common/IO/OpenSSLException.h"

#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Singletons/SingletonsRegister.h"

#include <boost/throw_exception.hpp>

#include <openssl/bio.h>
#include <openssl/buffer.h>
#include <openssl/err.h>

#include <memory>
#include <stdexcept>

namespace Nerix::Common::Utils::Encoding {

namespace {

struct BioDeleter {
    void operator()(BIO* bio) const { BIO_free(bio); }
};

} // namespace

OpenSSLException::OpenSSLException() : m_errors(loadOpenSSLErrors()) {}

const char* OpenSSLException::what() const noexcept {
    return m_errors.empty() ? "No error info provided by OpenSSL." : m_errors.c_str();
}

std::string OpenSSLException::loadOpenSSLErrors() {
    const auto openSSL = SingletonsRegister::getSingletonsRegister().getService<IO::OpenSSLInit>(
        "<unknown>", SINGLETON_OPENSSL_INITIALIZER);
    const std::unique_ptr<BIO, BioDeleter> bio(BIO_new(BIO_s_mem()));
    if (!bio) {
        BOOST_THROW_EXCEPTION(std::runtime_error("Creating BIO failed."));
    }
    ERR_load_crypto_strings();
    ERR_print_errors(bio.get());
    ERR_free_strings();
    BUF_MEM* buffer = nullptr;
    BIO_get_mem_ptr(bio.get(), &buffer);
    return {buffer->data, buffer->length};
}

} // namespace Nerix::Common::Utils::Encoding
