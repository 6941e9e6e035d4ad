#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashVerifierAPI.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/Progress.h"

#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"
#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "Platform/Product/IProductInfo.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <iomanip>
#include <limits>
#include <regex>
#include <thread>
#include <tuple>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Nerix::Tests {
namespace {

const std::string statusKey = "memory/menu/support/softwareupdate/hashverifier_status";
const std::string progressKey = "memory/menu/support/softwareupdate/hashverifier_progress";
const std::string resultKey = "db/menu/support/softwareupdate/hashverifier_result";

using Value = FakePlatform::Value;
using OpenSSLGuard = Common::Utils::SingletonServiceGuard<Common::IO::OpenSSLInit>;
using Writes = std::vector<std::pair<std::string, Value>>;

TEST(HashVerifierAPIDeathTest, VerifyFileSystemScansRootWithMd5) {
    const TemporaryDirectory root;
    inOwnProcess([&] {
        const int outside = ::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (::chroot(root.path().c_str()) + ::chdir("/") != 0) { return; } // an ordinary user may not
        Platform::IProductInfo::initializeProduct(Platform::TV_PRODUCT);
        const OpenSSLGuard openSSL{Common::Utils::SINGLETON_OPENSSL_INITIALIZER};
        HashVerifierAPI::startVerifyFileSystem();
        HashWorker::getInstance().wait();
        const std::string value = HashVerifierAPI::getResult();
        EXPECT_EQ(HashVerifierAPI::nerixVerifyPath("/", "md5"), value);
        EXPECT_EQ(HashVerifierAPI::nerixVerifyFileSystem(), value);
        EXPECT_EQ(::fchdir(outside), 0);
        EXPECT_EQ(::chroot("."), 0); // where a sanitizer finds /proc at the end
    });
}

class HashWorkerTest : public testing::Test {
protected:
    void SetUp() override {
        static const bool isWithoutDrives =
            (Platform::IProductInfo::initializeProduct(Platform::DEFAULT_PRODUCT), hideMountTable());
        if (!isWithoutDrives) { GTEST_SKIP() << "no private mounts on this machine: a run would write to its drives"; }
        platform().reset();
    }
    ~HashWorkerTest() override { HashWorker::getInstance().wait(); }

    static FakePlatform& platform() { return FakePlatform::instance(); }

    std::string verify() const { return HashVerifierAPI::nerixVerifyPath(m_tree.path().native(), "md5"); }

    Writes writesOfRun() const {
        platform().reset();
        EXPECT_NE(verify(), "ERROR");
        return platform().written();
    }

    const TemporaryDirectory m_tree;
    const OpenSSLGuard m_openSSL{Common::Utils::SINGLETON_OPENSSL_INITIALIZER};
};

TEST_F(HashWorkerTest, PublishesInTheOrderOfTheRun) {
    const std::string result = verify();
    EXPECT_TRUE(std::regex_match(result, std::regex("[0-9a-f]{16}"))) << result;
    const Writes expected = {{resultKey, "00000111"},          {progressKey, "0.0"},   {statusKey, "active"},
                             {resultKey, result.substr(0, 8)}, {progressKey, "100.0"}, {statusKey, "inactive"}};
    EXPECT_EQ(platform().written(), expected);
}

struct SettingsFailure {
    const char* name;
    std::string key; ///< of the setting that is refused
    int times;
    bool isDuringRun;    ///< refused from the status "active" on, or from the beginning
    std::string outcome; ///< "exception" of the start, "ERROR" or "value" of the run
    Writes lastWrites;
};

TEST_F(HashWorkerTest, SettingsFailureFailsTheRunButNotTheProcess) {
    const SettingsFailure cases[] = {
        {"first result", resultKey, 1, false, "exception", {}},
        {"first progress", progressKey, 1, false, "exception", {{resultKey, "00000111"}, {resultKey, "ERROR"}}},
        {"status active",
         statusKey,
         1,
         false,
         "exception",
         {{progressKey, "0.0"}, {statusKey, "inactive"}, {resultKey, "ERROR"}}},
        {"result", resultKey, 1, true, "ERROR", {{statusKey, "active"}, {resultKey, "ERROR"}, {statusKey, "inactive"}}},
        {"result and ERROR", resultKey, 2, true, "ERROR", {{statusKey, "active"}, {statusKey, "inactive"}}},
        {"status inactive twice", statusKey, 2, true, "value", {{progressKey, "100.0"}, {statusKey, "inactive"}}},
        {"status inactive always", statusKey, 100, true, "value", {{progressKey, "100.0"}}},
    };
    for (const SettingsFailure& failure : cases) {
        SCOPED_TRACE(failure.name);
        platform().reset();
        const auto refuse = [&] { platform().failSetting(failure.key, failure.times); };
        platform().onWrite = [&](const std::string& key, const Value& value) {
            if (key == statusKey && value == Value("active")) { refuse(); }
        };
        if (!failure.isDuringRun) { refuse(); }
        std::string outcome = "exception";
        const std::string report = diagnosticsOf([&] { outcome = verify() == "ERROR" ? "ERROR" : "value"; });
        EXPECT_EQ(outcome, failure.outcome) << report;
        Writes writes = platform().written();
        ASSERT_GE(writes.size(), failure.lastWrites.size());
        writes.erase(writes.begin(), writes.end() - static_cast<std::ptrdiff_t>(failure.lastWrites.size()));
        EXPECT_EQ(writes, failure.lastWrites);
    }
    EXPECT_EQ(platform().countLogged("[ERR] HashWorker.cpp:"), 3U) << "of the last case: each try";
    EXPECT_EQ(platform().countLogged(">Exception when setting scan status: "), 3U);
}

TEST_F(HashWorkerTest, SecondStartIsRefusedDuringARun) {
    std::promise<void> release;
    platform().onWrite = [&](const std::string& key, const Value& value) {
        if (key == progressKey && value == Value("100.0")) { release.get_future().wait(); }
    };
    HashVerifierAPI::startVerifyPath(m_tree.path().native(), "md5");
    EXPECT_THROW(HashVerifierAPI::startVerifyPath("/", "md5"), Common::Utils::GenericException);
    release.set_value();
    HashWorker::getInstance().wait();
    EXPECT_EQ(platform().written().size(), 6U) << "the second start changed nothing";
    EXPECT_EQ(HashWorker::getInstance().getRoot().path, boost::filesystem::canonical(m_tree.path()));
}

TEST_F(HashWorkerTest, PublishedSettingsDoNotDependOnThreadCount) {
    // What is in use on the file system is the whole of progress: nobody else may write there.
    if (!mountPrivately(m_tree.path().c_str())) { GTEST_SKIP() << "no private mounts on this machine"; }
    boost::filesystem::ofstream{m_tree.path() / "0"} << std::setw(12'000'000) << 'x';
    for (const std::string name : {"1", "2", "3"}) { // progress comes in long lists, inside files and between them
        const boost::filesystem::path directory = m_tree.path() / name;
        boost::filesystem::create_directory(directory);
        for (int number = 0; number < 3000; ++number) {
            ::mknod((directory / std::to_string(number)).c_str(), S_IFREG | 0600, 0);
        }
        boost::filesystem::ofstream{m_tree.path() / (name + "a")} << std::setw(12'000'000) << 'x';
        boost::filesystem::ofstream{m_tree.path() / (name + "b")} << std::setw(900'000) << 'x';
    }
    const auto setThreads = [](int count) {
        Common::getDebugAndTestParameters().setCustomIntParam("hashVerifierThreads", count);
    };
    Common::DebugAndTestParameters::loadDebugAndTestParameters("test");
    setThreads(1);
    const Writes expected = writesOfRun();
    EXPECT_GT(expected.size(), 30U);
    for (int run = 0; run < 6; ++run) {
        setThreads(2 + run);
        std::atomic<bool> isOver{false};
        std::thread asking([&] {
            while (!isOver) { EXPECT_GE(HashVerifierAPI::getProgress().size(), 4U); }
        });
        EXPECT_TRUE(writesOfRun() == expected) << 2 + run << " threads";
        isOver = true;
        asking.join();
        platform().onWrite = [isFirst = true](const std::string& key, const Value& value) mutable {
            const bool isOfRun = key == progressKey && value != Value("0.0");
            if (isOfRun && std::exchange(isFirst, false)) { platform().failSetting(key, 1); }
        };
        EXPECT_EQ(verify(), "ERROR") << "a report that fails is not tried again";
    }
    ::umount2(m_tree.path().c_str(), MNT_DETACH);
}

TEST(Progress, WorkIsRoundedUpToBlocksAndReportedByTheMebibyte) {
    const std::tuple<std::uint64_t, std::uint32_t, std::uint64_t> cases[] = {
        {0, 4096, 0},       {1, 4096, 4096}, {4096, 4096, 4096},
        {4097, 4096, 8192}, {4097, 0, 4097}, {(8ULL << 30U) + 1, 4096, (8ULL << 30U) + 4096}};
    for (const auto& [size, blockSize, work] : cases) { EXPECT_EQ(Progress::workOf(size, blockSize), work) << size; }
    EXPECT_FALSE(Progress::isWorthReporting(0x100005, 5));
    EXPECT_FALSE(Progress::isWorthReporting(5, 5));
    EXPECT_TRUE(Progress::isWorthReporting(0x100006, 5));
    EXPECT_TRUE(Progress::isWorthReporting(4, 5));
}

TEST(Progress, TextHasTwoDecimalsAndStaysBelowAHundred) {
    const std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    const std::tuple<std::uint64_t, std::uint64_t, const char*> cases[] = {
        {0, 1000, "0.00"},    {0, 0, "0.00"},        {1, 0, "99.99"},       {1000, 1000, "71.43"},
        {590, 1000, "42.14"}, {1399, 1000, "99.93"}, {1400, 1000, "99.99"}, {most, 1, "99.99"}};
    for (const auto& [reported, total, text] : cases) { EXPECT_EQ(Progress::text(reported, total), text) << reported; }
}

TEST(HashWorkerDeathTest, GetResultBeforeFirstRunAborts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process of its own: none has finished a run there
    EXPECT_EQ(HashVerifierAPI::getProgress(), "0.00");
    EXPECT_DEATH(HashVerifierAPI::getResult(), "ASSERTION FAILED: !m_calculatedHash.empty\\(\\), ");
}

} // namespace
} // namespace Nerix::Tests
