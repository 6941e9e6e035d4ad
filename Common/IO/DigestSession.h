#pragma once

#include "Common/IO/OpenSSLCompat.h"

#include <boost/core/noncopyable.hpp>

#include <memory>
#include <string>
#include <utility>

namespace Nerix::Common::IO {

/// Holds what the HashSinks of one thread share: a user entry in the SingletonsRegister, the last digest
/// fetched, and a spare context. Without a session, each sink registers itself, fetches its digest and
/// creates a context. This costs more than hashing a short text, and concurrent threads contend for the locks
/// of the register. A thread may have one session at a time. Destroy it on that thread, after its sinks.
class DigestSession : private boost::noncopyable {
public:
    DigestSession();
    ~DigestSession();

    /// Returns the session of the calling thread, or null if it has none.
    static DigestSession* current();

    /// Adds the user entry on the first call. Asserts that the register contains an OpenSSLInit.
    void registerUser();

    /// Returns the digest called name, or null if the library does not support it. Fetches it unless it is
    /// the last one fetched. The pointer is valid until the next call with another name.
    const EVP_MD* digest(const std::string& name);

    /// Returns the spare context, or a new one if there is none, or null if memory is exhausted. Start a
    /// digest in it before any other use.
    OpenSSLCompat::DigestContext takeContext();

    /// Keeps the context as the spare one, for the next sink.
    void keepContext(OpenSSLCompat::DigestContext context) { m_context = std::move(context); }

private:
    struct Registration;

    std::unique_ptr<Registration> m_registration;
    std::string m_digestName; ///< name of the last digest fetched
    OpenSSLCompat::Digest m_digest;
    OpenSSLCompat::DigestContext m_context;
};

} // namespace Nerix::Common::IO
