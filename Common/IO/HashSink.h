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

/// Computes a message digest of the data written to it, using the crypto library. Asserts that the
/// SingletonsRegister contains an OpenSSLInit, which must outlive the sink. Destroy the sink on the creating
/// thread.
class HashSink final : public ISink, public boost::noncopyable, public Utils::IDebugName {
public:
    /// Starts the digest that the crypto library calls digestName ("md5", "sha1", ...). Throws
    /// OpenSSLException if the library does not support or cannot start the digest.
    explicit HashSink(const std::string& digestName);

    /// Passes the context to the thread's DigestSession, if there is one.
    ~HashSink() override;

    /// Throws OpenSSLException if the library fails, and EndOfDataMarkedException if the end has been marked.
    void writeChunk(const std::uint8_t* data, std::size_t length) override;

    /// Throws the exceptions of writeChunk. The end counts as marked even if OpenSSLException is thrown.
    void markEndOfData() override;
    bool endOfDataMarked() override { return m_endOfData; }

    /// Returns the digest (16 bytes for md5, 20 for sha1), which the sink owns. Marks the end of the data
    /// first if necessary; throws OpenSSLException if that fails. Later calls then return meaningless bytes.
    const std::vector<std::uint8_t>& getHash();

    /// Returns "HashSink(NAME)" with the name of the digest.
    std::string debugName() const override;

private:
    Utils::SingletonPointer<OpenSSLInit> m_openSSL;
    std::string m_digestName;
    bool m_endOfData = false;
    OpenSSLCompat::DigestContext m_context;
    std::vector<std::uint8_t> m_hash;
};

} // namespace Nerix::Common::IO
