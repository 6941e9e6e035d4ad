#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashVerifierAPI.h"

#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Errors.h"
#include "Common/Utils/SingletonServiceGuard.h"
#include "Platform/Product/IProductInfo.h"
#include "Platform/SystemAPI/VconfSystemAPI/IVConf.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/exception/get_error_info.hpp>
#include <boost/filesystem/exception.hpp>
#include <boost/filesystem/fstream.hpp>
#include <boost/thread/exceptions.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <regex>
#include <thread>

namespace Nerix::Tests {
namespace {

const std::string statusKey = "memory/menu/support/softwareupdate/hashverifier_status";
const std::string progressKey = "memory/menu/support/softwareupdate/hashverifier_progress";
const std::string resultKey = "db/menu/support/softwareupdate/hashverifier_result";

using Texts = std::vector<std::string>;

class HashWorkerTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        try {
            Platform::IProductInfo::throwIfUninitialized();
        } catch (const Platform::ProductUninitializedException&) {
            platform().pathVariables[43] = "/no/drive/is/mounted/here";
            Platform::IProductInfo::initializeProduct(Platform::DEFAULT_PRODUCT);
        }
    }

    HashWorkerTest() { platform().reset(); }
    ~HashWorkerTest() override {
        HashWorker::getInstance().wait();
        platform().reset();
    }

    static FakePlatform& platform() { return FakePlatform::instance(); }

    std::string verify(const std::string& hash = "md5") const {
        return HashVerifierAPI::nerixVerifyPath(m_tree.path().native(), hash);
    }
    void makeFile(const std::string& name, std::size_t size) const {
        boost::filesystem::ofstream(m_tree.path() / name) << std::string(size, 'x');
    }

    const TemporaryDirectory m_tree;
    const Common::Utils::SingletonServiceGuard<Common::IO::OpenSSLInit> m_openSSL{
        Common::Utils::SINGLETON_OPENSSL_INITIALIZER};
};
using HashWorkerDeathTest = HashWorkerTest;

TEST_F(HashWorkerTest, PublishesInTheOrderOfTheRun) {
    const std::string result = verify();
    EXPECT_TRUE(std::regex_match(result, std::regex("[0-9a-f]{16}"))) << result;
    const std::vector<std::pair<std::string, std::string>> expected = {
        {resultKey, "00000111"},          {progressKey, "0.0"},   {statusKey, "active"},
        {resultKey, result.substr(0, 8)}, {progressKey, "100.0"}, {statusKey, "inactive"}};
    EXPECT_EQ(platform().allWritten(), expected);
    EXPECT_EQ(HashVerifierAPI::getResult(), result);
    EXPECT_EQ(verify("none"), "0000000000000000");
}

TEST_F(HashWorkerTest, RefusalsOfTheStoreNeverEndTheProcess) {
    const struct {
        const std::string& key;
        int times;
        const char* result; ///< null: start throws
        Texts status;
    } cases[] = {
        {resultKey, 1, nullptr, {}},
        {progressKey, 1, nullptr, {}},
        {statusKey, 1, nullptr, {"inactive"}},
    };
    for (const auto& refusal : cases) {
        platform().reset();
        platform().failSetting(refusal.key, refusal.times);
        EXPECT_THROW(verify(), Platform::IVConf::VConfException) << refusal.key;
        EXPECT_EQ(platform().written(statusKey), refusal.status) << refusal.key;
    }
    const auto failAfter = [](const std::string& after, const std::string& key, int times) {
        platform().reset();
        platform().onWrite = [=](const std::string&, const std::string& text) {
            if (text == after) {
                platform().failSetting(key, times);
            }
        };
    };
    failAfter("active", resultKey, 1); // the value is refused, "ERROR" is taken
    EXPECT_EQ(verify(), "ERROR");
    EXPECT_EQ(platform().written(resultKey).back(), "ERROR");
    failAfter("active", resultKey, 2); // "ERROR" is refused, too
    EXPECT_EQ(verify(), "ERROR");
    EXPECT_EQ(platform().logHolding("Exception when setting scan result: ").size(), 1U);
    EXPECT_EQ(platform().written(statusKey).back(), "inactive");
    failAfter("active", statusKey, 2); // "inactive" is taken at the third try
    EXPECT_NE(verify(), "ERROR");
    EXPECT_EQ(platform().written(statusKey).back(), "inactive");
    failAfter("active", statusKey, 100);
    EXPECT_NE(verify(), "ERROR");
}

TEST_F(HashWorkerTest, SecondStartIsRefusedAndChangesNothing) {
    std::promise<void> release;
    std::shared_future<void> released = release.get_future().share();
    platform().onWrite = [&](const std::string& key, const std::string& text) {
        if (key == progressKey && text == "100.0") {
            released.wait();
        }
    };
    HashVerifierAPI::startVerifyPath(m_tree.path().native(), "md5");
    try {
        HashVerifierAPI::startVerifyPath("/", "md5");
        ADD_FAILURE();
    } catch (const Common::Utils::GenericException& exception) {
        using Stream = boost::error_info<Common::Utils::tag_errinfo_stream, std::string>;
        EXPECT_EQ(*boost::get_error_info<Stream>(exception), "verification is already started");
    }
    release.set_value();
    HashWorker::getInstance().wait();
    EXPECT_EQ(platform().written(resultKey).size(), 2U);
    EXPECT_EQ(HashWorker::getInstance().getRoot().path, boost::filesystem::canonical(m_tree.path()));
    platform().onWrite = nullptr;
    EXPECT_NE(verify(), "ERROR") << "a later start is accepted";
}

TEST_F(HashWorkerTest, ProgressMayBeAskedFromAnyThread) {
    makeFile("long", 5U << 20U);
    std::atomic<bool> done{false};
    std::thread asking([&] {
        while (!done) {
            const std::string progress = HashVerifierAPI::getProgress();
            ASSERT_TRUE(std::regex_match(progress, std::regex("[0-9]{1,2}\\.[0-9]{2}"))) << progress;
        }
    });
    verify("none");
    verify("md5");
    done = true;
    asking.join();
}

TEST_F(HashWorkerTest, TheWorkerCannotWaitForItself) {
    std::string failure;
    platform().onWrite = [&](const std::string& key, const std::string& text) {
        if (key == progressKey && text == "100.0") {
            try {
                HashWorker::getInstance().wait();
            } catch (const boost::thread_resource_error& error) {
                failure = error.what();
            }
        }
    };
    EXPECT_NE(verify(), "ERROR");
    EXPECT_NE(failure.find("boost thread: trying joining itself"), std::string::npos) << failure;
}

TEST_F(HashWorkerDeathTest, ResultBeforeTheEndIsAnAssertion) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process of its own: none has finished a run there
    EXPECT_DEATH(HashVerifierAPI::getResult(), "ASSERTION FAILED: !m_calculatedHash.empty\\(\\), ");
}

} // namespace
} // namespace Nerix::Tests
