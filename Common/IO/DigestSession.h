#pragma once

#include "Common/IO/OpenSSLCompat.h"

#include <boost/core/noncopyable.hpp>

#include <memory>
#include <string>
#include <utility>

namespace Nerix::Common::IO {

/// Holds what the HashSinks of one thread share: a user entry in the singletons register, the digest that was
/// fetched last, and a spare context. Without it each sink registers itself, fetches its digest and makes a
/// context, which together cost more than hashing a short text, and concurrent threads contend for the locks
/// of the register. At most one session per thread; destroy it on that thread, after its sinks.
class DigestSession : private boost::noncopyable {
public:
    DigestSession();
    ~DigestSession();

    /// Returns the session of the calling thread, or null if it has none.
    static DigestSession* current();

    /// Registers the user entry on the first call. Asserts that the set-up of OpenSSLInit is in the register.
    void registerUser();

    /// Returns the digest of that name, fetching it unless it was the last one, or null if the library does
    /// not know the name. Valid until the next call with another name.
    const EVP_MD* digest(const std::string& name);

    /// Returns a context, new or used, in which to start a digest, or null if there is no memory.
    OpenSSLCompat::DigestContext takeContext();

    /// Keeps the context for the next sink.
    void keepContext(OpenSSLCompat::DigestContext context) { m_context = std::move(context); }

private:
    struct Registration;

    std::unique_ptr<Registration> m_registration;
    std::string m_digestName; ///< of the digest that was looked up last
    OpenSSLCompat::Digest m_digest;
    OpenSSLCompat::DigestContext m_context;
};

} // namespace Nerix::Common::IO
