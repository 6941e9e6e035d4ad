#include "Common/IO/HashSink.h"

#include "Common/IO/IOExceptions.h"
#include "Common/IO/OpenSSLException.h"
#include "Common/Utils/Encoding.h"
#include "Common/Utils/Errors.h"
#include "Common/Utils/SingletonServiceGuard.h"

#include <boost/exception/get_error_info.hpp>
#include <gtest/gtest.h>

#include <openssl/err.h>

namespace Nerix::Tests {
namespace {

using Common::IO::HashSink;
using Common::IO::OpenSSLInit;
using Common::Utils::Encoding::OpenSSLException;

class HashSinkTest : public testing::Test {
protected:
    static void write(HashSink& sink, const std::string& text) {
        sink.writeChunk(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    }
    static std::string hex(HashSink& sink) {
        return Common::Utils::Encoding::binToHex(sink.getHash().data(),
                                                 static_cast<unsigned int>(sink.getHash().size()));
    }

    const Common::Utils::SingletonServiceGuard<OpenSSLInit> m_openSSL{
        Common::Utils::SINGLETON_OPENSSL_INITIALIZER};
};
using HashSinkDeathTest = testing::Test;

TEST_F(HashSinkTest, DigestsOfKnownMessages) {
    // RFC 1321, A.5, and FIPS 180-1, appendix A.
    const struct {
        const char* digest;
        std::vector<std::string> chunks;
        const char* expected;
    } cases[] = {
        {"md5", {}, "d41d8cd98f00b204e9800998ecf8427e"},
        {"md5", {"abc"}, "900150983cd24fb0d6963f7d28e17f72"},
        {"md5", {"ab", "", "c"}, "900150983cd24fb0d6963f7d28e17f72"},
        {"sha1", {"abc"}, "a9993e364706816aba3e25717850c26c9cd0d89d"},
    };
    for (const auto& expected : cases) {
        HashSink sink(expected.digest);
        for (const std::string& chunk : expected.chunks) {
            write(sink, chunk);
        }
        EXPECT_EQ(hex(sink), expected.expected);
        EXPECT_EQ(hex(sink), expected.expected) << "asked twice";
    }
}

TEST_F(HashSinkTest, EndedSinkRefusesData) {
    HashSink sink("sha1");
    sink.getHash();
    EXPECT_TRUE(sink.endOfDataMarked());
    try {
        write(sink, "x");
        FAIL();
    } catch (const Common::IO::IOExceptions::EndOfDataMarkedException& exception) {
        using Subject = boost::error_info<Common::Utils::tag_errinfo_subject, std::string>;
        EXPECT_EQ(*boost::get_error_info<Subject>(exception), "HashSink(sha1)");
    }
    EXPECT_THROW(sink.markEndOfData(), Common::IO::IOExceptions::EndOfDataMarkedException);
}

TEST_F(HashSinkTest, UnknownDigestIsReportedWithTheLibrarysText) {
    ERR_clear_error();
    try {
        const HashSink unknown("md6");
        FAIL();
    } catch (const OpenSSLException& exception) {
        EXPECT_EQ(*boost::get_error_info<Common::Utils::errinfo_description>(exception),
                  "Can't initialize digest.");
        EXPECT_NE(exception.getErrors().find("unsupported"), std::string::npos) << exception.getErrors();
        EXPECT_EQ(exception.what(), exception.getErrors());
    }
    EXPECT_STREQ(OpenSSLException().what(), "No error info provided by OpenSSL.") << "the queue is emptied";
}

TEST_F(HashSinkDeathTest, WithoutTheSetUpTheRegisterAsserts) {
    EXPECT_DEATH(HashSink("md5"), "MESSAGE: Singleton SINGLETON_OPENSSL_INITIALIZER does not exist.");
}

} // namespace
} // namespace Nerix::Tests
