#include "Common/IO/HashSink.h"

#include "Common/IO/IOExceptions.h"
#include "Common/IO/OpenSSLException.h"
#include "Common/Utils/Encoding.h"
#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"

#include <boost/exception/get_error_info.hpp>
#include <gtest/gtest.h>

namespace Nerix::Tests {
namespace {

using namespace Common::Utils; // NOLINT(google-build-using-namespace): its names fill this test
using Common::IO::HashSink;

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
    try {
        sink.writeChunk(abc, 1);
        FAIL();
    } catch (const Common::IO::IOExceptions::EndOfDataMarkedException& exception) {
        EXPECT_EQ((*boost::get_error_info<boost::error_info<tag_errinfo_subject, std::string>>(exception)),
                  "HashSink(md5)");
    }
}

TEST(HashSink, UnknownDigestFailsWithTheLibrarysReasonWhateverCameBefore) {
    const SingletonServiceGuard<Common::IO::OpenSSLInit> openSSL(SINGLETON_OPENSSL_INITIALIZER);
    EXPECT_EQ(HashSink("md5").getHash().size(), 16U);
    EXPECT_EQ(HashSink("sha1").getHash().size(), 20U);
    try {
        const HashSink sink("md6");
        FAIL();
    } catch (const Encoding::OpenSSLException& exception) {
        EXPECT_EQ(*boost::get_error_info<errinfo_description>(exception), "Can't initialize digest.");
        EXPECT_EQ((*boost::get_error_info<boost::error_info<tag_errinfo_subject, std::string>>(exception)),
                  "HashSink(md6)");
        EXPECT_NE(exception.getErrors().find("no digest set"), std::string::npos) << exception.getErrors();
    }
    EXPECT_STREQ(Encoding::OpenSSLException().what(), "No error info provided by OpenSSL.");
}

TEST(HashSinkDeathTest, WithoutTheSetUpTheRegisterAsserts) {
    EXPECT_DEATH(HashSink("md5"), "MESSAGE: Singleton SINGLETON_OPENSSL_INITIALIZER does not exist.");
}

} // namespace
} // namespace Nerix::Tests
