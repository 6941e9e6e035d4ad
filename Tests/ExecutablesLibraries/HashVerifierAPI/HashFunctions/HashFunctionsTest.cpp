#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctions.h"

#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"

#include <boost/exception/diagnostic_information.hpp>
#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace Nerix::Tests {
namespace {

using Bytes = std::vector<unsigned long long>;

class Recorder final : public HashFunctions::StepObserver {
public:
    void onStep(unsigned long long bytes) override { heard.push_back(bytes); }
    Bytes heard;
};

class HashFunctionsTest : public testing::Test {
    const Common::Utils::SingletonServiceGuard<Common::IO::OpenSSLInit> m_openSSL{
        Common::Utils::SINGLETON_OPENSSL_INITIALIZER};
};

TEST_F(HashFunctionsTest, StepsHaveTheirValues) {
    const struct {
        const char* method;
        IHashFunction::hash_t value;
        const char* text;
        IHashFunction::hash_t result;
    } cases[] = {
        {"none", 5, "abc", 5},
        {"trivial", 5, "abc", 8},
        {"trivial", 0xffffffffffffffff, "a", 0},
        // The digests of Python's hashlib.
        {"md5", 0, "", 0x956a4952a3d4f474},
        {"md5", 0x0102030405060708, "abc", 0x57178cbd7523c70f},
        {"sha1", 0, "", 0xac558654f107c7e9},
        {"sha1", 0x0102030405060708, "abc", 0x1f0c64a31e6f4a33},
    };
    for (const auto& step : cases) {
        EXPECT_EQ(HashFunctions::getInstance(step.method).apply(step.value, std::string(step.text)),
                  step.result)
            << step.method << ' ' << step.value;
    }
}

TEST_F(HashFunctionsTest, UnknownMethodIsNamed) {
    for (const std::string method : {"", "SHA1", "sha-1", "md5 "}) {
        try {
            HashFunctions::getInstance(method);
            ADD_FAILURE() << method;
        } catch (const Common::Utils::GenericException& exception) {
            EXPECT_NE(
                boost::diagnostic_information(exception).find("unknown hash function: " + method + '\n'),
                std::string::npos);
        }
    }
}

TEST_F(HashFunctionsTest, DigestStepsReportTheirBytesToTheLastObserverOfTheirThread) {
    const std::string method = "md5";
    const IHashFunction& md5 = HashFunctions::getInstance(method);
    std::string content(4097, 'x');
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(
        ::fmemopen(content.data(), content.size(), "r"), &std::fclose);
    Recorder outer;
    md5.apply(0, std::string("abc"));
    HashFunctions::getInstance("trivial").apply(0, std::string("nobody reads this"));
    std::thread([&] { md5.apply(0, std::string("on a thread without an observer")); }).join();
    {
        Recorder inner;
        md5.apply(0, stream.get());
        EXPECT_EQ(inner.heard, (Bytes{4096, 1}));
    }
    md5.apply(0, std::string());
    EXPECT_EQ(outer.heard, (Bytes{3, 0}));
}

} // namespace
} // namespace Nerix::Tests
