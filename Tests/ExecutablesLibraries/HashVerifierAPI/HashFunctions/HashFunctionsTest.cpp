#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctions.h"

#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"

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

TEST_F(HashFunctionsTest, DigestStepsReportTheirBytesToTheLastObserverOfTheirThread) {
    const std::string method = "md5";
    const IHashFunction& md5 = HashFunctions::getInstance(method);
    std::string content(4097, 'x');
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(::fmemopen(content.data(), content.size(), "r"),
                                                                 &std::fclose);
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
