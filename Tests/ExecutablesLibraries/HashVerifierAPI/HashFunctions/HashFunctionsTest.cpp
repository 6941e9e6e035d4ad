#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctions.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"

#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Errors.h"
#include "Common/Utils/SingletonServiceGuard.h"

#include <boost/exception/get_error_info.hpp>
#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <memory>

namespace Nerix::Tests {
namespace {

class HashFunctionsTest : public testing::Test {
protected:
    static std::uint64_t ofStream(const IHashFunction& function, std::uint64_t value, std::string content) {
        if (content.empty()) {
            content = "x"; // fmemopen takes no empty buffer
        }
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(
            ::fmemopen(content.data(), content.size(), "r"), &std::fclose);
        if (content == "x") {
            std::fgetc(stream.get());
        }
        return function.apply(value, stream.get());
    }

    const Common::Utils::SingletonServiceGuard<Common::IO::OpenSSLInit> m_openSSL{
        Common::Utils::SINGLETON_OPENSSL_INITIALIZER};
};

TEST_F(HashFunctionsTest, OneStepOfEach) {
    const std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    const struct {
        const char* name;
        std::uint64_t value;
        std::string text;
        std::uint64_t expected;
    } cases[] = {
        {"none", 12345, "abc", 12345},
        {"trivial", 5, "abc", 8},
        {"trivial", largest, "a", 0},
        // The last 16 digits that md5sum and sha1sum print for 8 little-endian bytes of the value and the
        // text.
        {"md5", 0, "", 0x956a4952a3d4f474},
        {"sha1", 0, "", 0xac558654f107c7e9},
        {"sha1", 1, "", 0x0f3fbd4dc0e8d1fe},
        {"sha1", 0x0102030405060708, "abc", 0x1f0c64a31e6f4a33},
    };
    for (const auto& step : cases) {
        EXPECT_EQ(HashFunctions::getInstance(step.name).apply(step.value, step.text), step.expected)
            << step.name << " of " << step.value << " and '" << step.text << "'";
    }
}

TEST_F(HashFunctionsTest, StreamsAreTakenInChunksOf4096Bytes) {
    for (const char* const name : {"trivial", "sha1", "md5"}) {
        SCOPED_TRACE(name);
        const IHashFunction& function = HashFunctions::getInstance(name);
        const std::string chunk(4096, 'c');
        EXPECT_EQ(ofStream(function, 9, ""), 9U);
        EXPECT_EQ(ofStream(function, 9, chunk), function.apply(9, chunk));
        EXPECT_EQ(ofStream(function, 9, chunk + "d"),
                  function.apply(function.apply(9, chunk), std::string("d")));
    }
}

TEST_F(HashFunctionsTest, UnknownNamesAreRefused) {
    for (const std::string name : {"", "SHA1", "sha-1", "md5 "}) {
        try {
            HashFunctions::getInstance(name);
            ADD_FAILURE() << name;
        } catch (const Common::Utils::GenericException& exception) {
            using Stream = boost::error_info<Common::Utils::tag_errinfo_stream, std::string>;
            EXPECT_EQ(*boost::get_error_info<Stream>(exception), "unknown hash function: " + name);
        }
    }
}

} // namespace
} // namespace Nerix::Tests
