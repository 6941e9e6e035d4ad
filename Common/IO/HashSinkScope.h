#pragma once

#include "Common/IO/OpenSSLCompat.h"

#include <boost/core/noncopyable.hpp>

#include <openssl/evp.h>

#include <memory>
#include <string>
#include <utility>

namespace Nerix::Common::IO {

/// While it lives, the HashSinks of its thread share one user entry in the singletons register, one digest
/// lookup and one context. Otherwise concurrent hashing threads would contend for the register's locks at
/// every sink, and making a context costs about as much as hashing a short text. The first sink registers the
/// entry (asserting that the set-up exists); the scope's destructor removes it. At most one scope per thread;
/// destroy it on that thread, after its sinks.
class HashSinkScope : private boost::noncopyable {
public:
    HashSinkScope();
    ~HashSinkScope();

    /// The calling thread's; null when it has none.
    static HashSinkScope* current();

    /// Registers the user entry on the first call.
    void use();

    /// A context to start a digest with, whatever was in it before; null when there is no memory.
    OpenSSLCompat::DigestContext takeContext();

    /// Keeps the context for the next sink.
    void keepContext(OpenSSLCompat::DigestContext context) { m_context = std::move(context); }

    /// Like lookUpDigest, but caches the last result.
    const EVP_MD* lookUp(const std::string& digestName);

private:
    struct User;

    std::unique_ptr<User> m_user;
    OpenSSLCompat::DigestContext m_context;
    std::string m_digestName;         ///< of the digest that was looked up last
    const EVP_MD* m_digest = nullptr; ///< null until a look-up succeeds
};

} // namespace Nerix::Common::IO
