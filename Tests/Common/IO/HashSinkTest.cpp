#include "Common/IO/HashSink.h"

#include "Common/IO/HashSinkScope.h"
#include "Common/IO/IOExceptions.h"
#include "Common/IO/OpenSSLException.h"
#include "Common/Utils/Encoding.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"
#include "Tests/Fakes/Report.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include <pthread.h>

namespace Nerix::Tests {
namespace {

using namespace Common::Utils; // NOLINT(google-build-using-namespace): its names fill this test
using Common::IO::HashSink;
using Common::IO::OpenSSLInit;

TEST(HashSink, EndedSinkKeepsItsDigestAndRefusesData) {
    const SingletonServiceGuard<Common::IO::OpenSSLInit> openSSL(SINGLETON_OPENSSL_INITIALIZER);
    HashSink sink("md5");
    const std::uint8_t abc[] = {'a', 'b', 'c'};
    sink.writeChunk(abc, 2);
    sink.writeChunk(abc + 2, 1);
    for (const char* const time : {"first", "second"}) {
        const auto digest = sink.getHash();
        EXPECT_EQ(Encoding::binToHex(digest.data(), static_cast<unsigned int>(digest.size())),
                  "900150983cd24fb0d6963f7d28e17f72")
            << time << ", RFC 1321, A.5";
    }
    EXPECT_TRUE(sink.endOfDataMarked());
    EXPECT_THROW(sink.markEndOfData(), Common::IO::IOExceptions::EndOfDataMarkedException);
    EXPECT_TRUE(has(reportOf([&] { sink.writeChunk(abc, 1); }), "] = HashSink(md5)\n"));
}

TEST(HashSink, UnknownDigestFailsWithTheLibrarysReasonWhateverCameBefore) {
    const SingletonServiceGuard<Common::IO::OpenSSLInit> openSSL(SINGLETON_OPENSSL_INITIALIZER);
    EXPECT_EQ(HashSink("md5").getHash().size(), 16U);
    EXPECT_EQ(HashSink("sha1").getHash().size(), 20U);
    const std::string report = reportOf([] { const HashSink sink("md6"); });
    for (const char* const part :
         {"OpenSSLException", "] = Can't initialize digest.\n", "] = HashSink(md6)\n", "no digest set"}) {
        EXPECT_TRUE(has(report, part)) << part << " in " << report;
    }
    EXPECT_STREQ(Encoding::OpenSSLException().what(), "No error info provided by OpenSSL.");
}

TEST(HashSinkDeathTest, WithoutTheSetUpTheRegisterAsserts) {
    EXPECT_DEATH(HashSink("md5"), "MESSAGE: Singleton SINGLETON_OPENSSL_INITIALIZER does not exist.");
}

TEST(HashSinkDeathTest, SetUpMayNotGoWhileASinkUsesIt) {
    auto openSSL = std::make_unique<SingletonServiceGuard<OpenSSLInit>>(SINGLETON_OPENSSL_INITIALIZER);
    EXPECT_DEATH(
        {
            const HashSink one("md5");
            const HashSink another("md5");
            openSSL.reset();
        },
        "is still used by: \\[<unknown>\\] \\[<unknown>\\]\n");
    EXPECT_DEATH(
        {
            const Common::IO::HashSinkScope scope;
            const HashSink one("md5");
            const HashSink another("md5");
            openSSL.reset();
        },
        "is still used by: \\[<unknown>\\]\n")
        << "the sinks of a scope share an entry";
}

TEST(OpenSSLInitDeathTest, CallbacksLockWhatTheyNameAndGoWithTheSetUp) {
    namespace Compat = Common::IO::OpenSSLCompat;
    {
        const SingletonServiceGuard<OpenSSLInit> openSSL(SINGLETON_OPENSSL_INITIALIZER);
        const auto set =
            SingletonsRegister::getSingletonsRegister().getService<OpenSSLInit>("test", SINGLETON_OPENSSL_INITIALIZER);
        Compat::getLockingCallback()(1, 0, "", 0); // CRYPTO_LOCK
        EXPECT_DEATH(
            {
                OpenSSLInit held;
                held.lock(0);
            },
            "MESSAGE: Destroying object when mutex is still locked!");
        set->unlock(0);
        set->lock(0);
        Compat::getLockingCallback()(2, 0, "", 0);
        EXPECT_THROW(set->lock(Compat::numLocks()), std::out_of_range);
        Compat::ThreadId id;
        Compat::getThreadIdCallback()(&id);
        EXPECT_EQ(id.value, ::pthread_self());
    }
    EXPECT_EQ(Compat::getLockingCallback(), nullptr);
    EXPECT_EQ(Compat::getThreadIdCallback(), nullptr);
}

} // namespace
} // namespace Nerix::Tests
