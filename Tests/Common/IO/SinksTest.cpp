#include "Common/IO/CRCSink.h"
#include "Common/IO/HashSink.h"

#include "Common/IO/DigestSession.h"
#include "Common/IO/IOExceptions.h"
#include "Common/IO/OpenSSLException.h"
#include "Common/Utils/Encoding.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"
#include "Tests/Fakes/Report.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

#include <pthread.h>

namespace Nerix::Tests {
namespace {

using namespace Common::Utils;
using Common::IO::HashSink;
using Common::IO::OpenSSLInit;

TEST(HashSink, RejectsDataAfterEnd) {
    const SingletonServiceGuard<Common::IO::OpenSSLInit> openSSL(SINGLETON_OPENSSL_INITIALIZER);
    HashSink sink("md5");
    const std::uint8_t abc[] = {'a', 'b', 'c'};
    sink.writeChunk(abc, 2);
    sink.writeChunk(abc + 2, 1);
    const auto digest = sink.getHash();
    EXPECT_EQ(Encoding::binToHex(digest.data(), 16), "900150983cd24fb0d6963f7d28e17f72") << "RFC 1321, A.5";
    EXPECT_EQ(sink.getHash(), digest);
    EXPECT_TRUE(sink.endOfDataMarked());
    EXPECT_THROW(sink.markEndOfData(), Common::IO::IOExceptions::EndOfDataMarkedException);
    EXPECT_PRED2(contains, diagnosticsOf([&] { sink.writeChunk(abc, 1); }), "] = HashSink(md5)\n");
}

TEST(HashSink, UnknownDigestReportsOpenSSLError) {
    const SingletonServiceGuard<Common::IO::OpenSSLInit> openSSL(SINGLETON_OPENSSL_INITIALIZER);
    const std::string report = diagnosticsOf([] { const HashSink sink("md6"); });
    EXPECT_PRED2(contains, report, "OpenSSLException");
    EXPECT_PRED2(contains, report, "] = Can't initialize digest.\n");
    EXPECT_PRED2(contains, report, "] = HashSink(md6)\n");
    EXPECT_PRED2(contains, report, "no digest set");
    EXPECT_STREQ(Encoding::OpenSSLException().what(), "No error info provided by OpenSSL.");
}

TEST(HashSink, DigestsOfOneSessionAreKeptApart) {
    const SingletonServiceGuard<Common::IO::OpenSSLInit> openSSL(SINGLETON_OPENSSL_INITIALIZER);
    const Common::IO::DigestSession session;
    EXPECT_EQ(HashSink("md5").getHash().size(), 16U);
    EXPECT_THROW(HashSink("md6"), Encoding::OpenSSLException) << "the digest before it must not take its place";
    EXPECT_EQ(HashSink("sha1").getHash().size(), 20U);
    EXPECT_EQ(HashSink("md5").getHash().size(), 16U);
    ASSERT_EQ(EVP_set_default_properties(nullptr, "provider=none"), 1);
    EXPECT_THROW(HashSink("sha384"), Encoding::OpenSSLException);
    ASSERT_EQ(EVP_set_default_properties(nullptr, ""), 1);
    EXPECT_EQ(HashSink("sha384").getHash().size(), 48U) << "a digest that was not found is looked up again";
}

TEST(HashSinkDeathTest, DestroyingOpenSSLInitInUseAborts) {
    auto openSSL = std::make_unique<SingletonServiceGuard<OpenSSLInit>>(SINGLETON_OPENSSL_INITIALIZER);
    const auto endWithTwoSinks = [&](bool areInOneScope) {
        std::optional<Common::IO::DigestSession> session;
        if (areInOneScope) { session.emplace(); }
        const HashSink one("md5");
        const HashSink another("md5");
        openSSL.reset();
    };
    EXPECT_DEATH(endWithTwoSinks(false), "is still used by: \\[<unknown>\\] \\[<unknown>\\]\n");
    EXPECT_DEATH(endWithTwoSinks(true), "is still used by: \\[<unknown>\\]\n") << "the sinks of a scope share an entry";
}

TEST(OpenSSLInitDeathTest, CallbacksLockTheGivenMutexAndAreRemovedOnDestruction) {
    namespace Compat = Common::IO::OpenSSLCompat;
    {
        const SingletonServiceGuard<OpenSSLInit> openSSL(SINGLETON_OPENSSL_INITIALIZER);
        const auto set =
            SingletonsRegister::getSingletonsRegister().getService<OpenSSLInit>("test", SINGLETON_OPENSSL_INITIALIZER);
        enum { lockMode = 1, unlockMode = 2 }; // CRYPTO_LOCK and CRYPTO_UNLOCK of OpenSSL 1.0
        Compat::getLockingCallback()(lockMode, 0, "", 0);
        EXPECT_DEATH(OpenSSLInit().lock(0), "MESSAGE: Destroying object when mutex is still locked!");
        set->unlock(0);
        set->lock(0);
        Compat::getLockingCallback()(unlockMode, 0, "", 0);
        EXPECT_THROW(set->lock(Compat::numLocks()), std::out_of_range);
        Compat::ThreadId id;
        Compat::getThreadIdCallback()(&id);
        EXPECT_EQ(id.value, ::pthread_self());
    }
    EXPECT_EQ(Compat::getLockingCallback(), nullptr);
    EXPECT_EQ(Compat::getThreadIdCallback(), nullptr);
}

using Bytes = std::vector<std::uint8_t>;

/// An in-memory transaction that stores into, or restores from, bytes.
class Record final : public Common::IO::IStoreTransaction, public Common::IO::ISerializer {
public:
    explicit Record(bool isStoring, Bytes content = {}) : bytes(std::move(content)), m_isStoring(isStoring) {}
    Common::IO::ISerializer& serializer() override { return *this; }
    bool isStoring() const override { return m_isStoring; }
    void transfer(std::uint64_t position, std::uint8_t* data, unsigned int length) override {
        bytes.resize(std::max<std::size_t>(bytes.size(), position + length));
        std::uint8_t* const here = bytes.data() + position;
        m_isStoring ? std::copy_n(data, length, here) : std::copy_n(here, length, data);
    }
    Bytes bytes;

private:
    const bool m_isStoring;
};

void write(Common::IO::CRC32Sink& sink, const std::string& text) {
    sink.writeChunk(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

TEST(CRCSink, StateCanBeSavedAndRestored) {
    Common::IO::CRC32Sink whole;
    EXPECT_EQ(whole.checksum(), 0U);
    write(whole, "123456789");
    EXPECT_EQ(whole.checksum(), 0xCBF43926U) << "the published check value";

    Common::IO::CRC32Sink first;
    write(first, "1234");
    Record stored(true);
    first.transactionSerialize(&stored);
    // zlib.crc32(b"1234") ^ 0xffffffff with its 32 bits reversed, least significant byte first.
    EXPECT_EQ(stored.bytes, (Bytes{0, 0x26, 0x38, 0xf8, 0x3a}));
    Common::IO::CRC32Sink second;
    Record restored(false, stored.bytes);
    second.transactionSerialize(&restored);
    write(second, "56789");
    EXPECT_EQ(second.checksum(), whole.checksum());

    second.markEndOfData();
    Record ended(true);
    second.transactionSerialize(&ended);
    EXPECT_EQ(ended.bytes[0], 1);
    Record again(false, ended.bytes);
    first.transactionSerialize(&again);
    EXPECT_TRUE(first.endOfDataMarked());
    EXPECT_THROW(write(first, ""), Common::IO::IOExceptions::EndOfDataMarkedException);
    EXPECT_PRED2(contains, diagnosticsOf([&] { write(first, ""); }), "] = CRCSink\n");
    EXPECT_PRED2(contains, diagnosticsOf([&] { first.markEndOfData(); }), "] = CRCSink\n");
}

} // namespace
} // namespace Nerix::Tests
