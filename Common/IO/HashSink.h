#pragma once

#include "Common/IO/ISink.h"
#include "Common/IO/OpenSSLCompat.h"
#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Errors/IDebugName.h"
#include "Common/Utils/Singletons/SingletonPointer.h"

#include <boost/core/noncopyable.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace Nerix::Common::IO {

/// Computes one message digest of the data pushed into it, with the crypto library. Needs the set-up of
/// OpenSSLInit in the singletons register for its whole life, and asserts that it is there. Destroy it on the
/// thread that made it.
class HashSink final : public ISink, public boost::noncopyable, public Utils::IDebugName {
public:
    /// digestName: as the crypto library names it ("md5", "sha1", ...). Throws OpenSSLException when the
    /// library does not know the name or refuses to start.
    explicit HashSink(const std::string& digestName);

    /// Leaves the context to the thread's DigestSession, if there is one.
    ~HashSink() override;

    /// Throws OpenSSLException if the library fails, and EndOfDataMarkedException after the end.
    void writeChunk(const std::uint8_t* data, std::size_t length) override;

    /// Throws like writeChunk. The end counts as marked even if OpenSSLException is thrown.
    void markEndOfData() override;
    bool endOfDataMarked() override { return m_endOfData; }

    /// The digest, 16 bytes for md5, 20 for sha1, owned by the sink. Marks the end of the data first if
    /// necessary, and then throws like markEndOfData. After such a failure the returned bytes are meaningless
    /// zeros.
    const std::vector<std::uint8_t>& getHash();

    /// "HashSink(" + name + ")".
    std::string debugName() const override;

private:
    Utils::SingletonPointer<OpenSSLInit> m_openSSL;
    std::string m_digestName;
    bool m_endOfData = false;
    OpenSSLCompat::DigestContext m_context;
    std::vector<std::uint8_t> m_hash;
};

} // namespace Nerix::Common::IO
