#pragma once

#include "Common/IO/OpenSSLCompat.h"

#include <boost/core/noncopyable.hpp>

#include <openssl/evp.h>

#include <memory>
#include <string>
#include <utility>

namespace Nerix::Common::IO {

/// While it lives, the HashSinks of its thread share one entry among the users of the crypto set-up, one
/// look-up of their digest, and one context: threads that hash at once would otherwise queue for the register's locks at each
/// sink, and making a context costs about as much as hashing a short text. The first sink takes the entry, asserting that the set-up is there; it goes with the scope. One at a
/// time on a thread; destroy it there, after its sinks.
class HashSinkScope : private boost::noncopyable {
public:
    HashSinkScope();
    ~HashSinkScope();

    /// The calling thread's; null when it has none.
    static HashSinkScope* current();

    /// Takes the entry, unless that has happened.
    void use();

    /// A context to start a digest with, whatever was in it before; null when there is no memory.
    OpenSSLCompat::DigestContext takeContext();

    /// Keeps the context for the next sink.
    void keepContext(OpenSSLCompat::DigestContext context) { m_context = std::move(context); }

    /// The same as lookUpDigest.
    const EVP_MD* lookUp(const std::string& digestName);

private:
    struct User;

    std::unique_ptr<User> m_user;
    OpenSSLCompat::DigestContext m_context;
    std::string m_digestName;         ///< of the digest that was looked up last
    const EVP_MD* m_digest = nullptr; ///< null until a look-up succeeds
};

} // namespace Nerix::Common::IO
