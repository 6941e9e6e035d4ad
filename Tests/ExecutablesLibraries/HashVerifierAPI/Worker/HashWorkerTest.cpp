#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Directory.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Helpers.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/OpenSSLHash.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashVerifierAPI.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/Progress.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/RunOptions.h"

#include "Common/IO/OpenSSLException.h"
#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"
#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "Platform/Product/IProductInfo.h"
#include "Platform/SystemAPI/VconfSystemAPI/IVConf.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <future>
#include <iomanip>
#include <limits>
#include <thread>
#include <tuple>

#include <fcntl.h>
#include <sys/resource.h>
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
    if (!succeedsInChild([] { return ::chroot("/") == 0; })) {
        GTEST_SKIP() << "this user may not change the root directory";
    }
    const TemporaryDirectory root;
    inOwnProcess([&] {
        const int outside = ::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ASSERT_EQ(::chroot(root.path().c_str()), 0);
        ASSERT_EQ(::chdir("/"), 0);
        Platform::IProductInfo::initializeProduct(Platform::TV_PRODUCT);
        const OpenSSLGuard openSSL{Common::Utils::SINGLETON_OPENSSL_INITIALIZER};
        HashVerifierAPI::startVerifyFileSystem();
        HashWorker::getInstance().wait();
        const std::string value = HashVerifierAPI::getResult();
        EXPECT_EQ(HashVerifierAPI::nerixVerifyPath("/", "md5"), value);
        EXPECT_EQ(HashVerifierAPI::nerixVerifyFileSystem(), value);
        EXPECT_EQ(::fchdir(outside), 0);
        EXPECT_EQ(::chroot("."), 0); // a sanitizer needs /proc at the end
    });
}

TEST(HashVerifierAPIDeathTest, RunThatGoesOnWithoutAnEntryEndsWithError) {
    const TemporaryDirectory tree;
    for (const char* const name : {"a", "b"}) { boost::filesystem::ofstream{tree.path() / name} << "12345"; }
    boost::filesystem::permissions(tree.path() / "a", boost::filesystem::no_perms);
    inOwnProcess([&] {
        if (::geteuid() == 0 && ::setuid(12345) != 0) { return; } // no other user in this user namespace
        const OpenSSLGuard openSSL{Common::Utils::SINGLETON_OPENSSL_INITIALIZER};
        int failures = 0;
        RunOptions options;
        options.onUnreadable = [&](const std::exception_ptr&) { ++failures; };
        EXPECT_EQ(HashVerifierAPI::nerixVerifyPath(tree.path().native(), "md5", options), "ERROR");
        EXPECT_EQ(failures, 1);
        EXPECT_EQ(HashVerifierAPI::getEntries(), 2U) << "the other file and the directory";
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

    /// Makes writes of the setting fail from the status "active" on.
    static void failAfterStatusActive(const std::string& failingKey, int times) {
        platform().onWrite = [=](const std::string& key, const Value& value) {
            if (key == statusKey && value == Value("active")) { platform().failSetting(failingKey, times); }
        };
    }

    static Writes lastWrites(std::size_t count) {
        const Writes all = platform().written();
        return {all.end() - static_cast<std::ptrdiff_t>(std::min(count, all.size())), all.end()};
    }

    const TemporaryDirectory m_tree;
    const OpenSSLGuard m_openSSL{Common::Utils::SINGLETON_OPENSSL_INITIALIZER};
};

TEST_F(HashWorkerTest, PublishesInTheOrderOfTheRun) {
    const std::string result = verify();
    EXPECT_PRED2(matches, result, "[0-9a-f]{16}");
    const Writes expected = {{resultKey, "00000111"},          {progressKey, "0.0"},   {statusKey, "active"},
                             {resultKey, result.substr(0, 8)}, {progressKey, "100.0"}, {statusKey, "inactive"}};
    EXPECT_EQ(platform().written(), expected);
}

TEST_F(HashWorkerTest, SettingsFailureAtTheStartThrows) {
    const std::pair<std::string, Writes> lastWritesByKey[] = {
        {resultKey, {}},
        {progressKey, {{resultKey, "00000111"}, {resultKey, "ERROR"}}},
        {statusKey, {{progressKey, "0.0"}, {statusKey, "inactive"}, {resultKey, "ERROR"}}},
    };
    for (const auto& [key, expected] : lastWritesByKey) {
        SCOPED_TRACE(key);
        platform().reset();
        platform().failSetting(key, 1);
        EXPECT_THROW(verify(), Platform::IVConf::VConfException);
        EXPECT_EQ(lastWrites(expected.size()), expected);
    }
}

struct SettingsFailure {
    const char* name;
    std::string key; ///< writes of this setting fail
    int times;
    std::string outcome; ///< what the run returns
    Writes lastWrites;
};

TEST_F(HashWorkerTest, SettingsFailureDuringTheRunNeverThrows) {
    const std::string value = verify();
    const SettingsFailure cases[] = {
        {"result", resultKey, 1, "ERROR", {{statusKey, "active"}, {resultKey, "ERROR"}, {statusKey, "inactive"}}},
        {"result and ERROR", resultKey, 2, "ERROR", {{statusKey, "active"}, {statusKey, "inactive"}}},
        {"status twice", statusKey, 2, value, {{progressKey, "100.0"}, {statusKey, "inactive"}}},
        {"status always", statusKey, 100, value, {{progressKey, "100.0"}}},
    };
    for (const SettingsFailure& failure : cases) {
        SCOPED_TRACE(failure.name);
        platform().reset();
        failAfterStatusActive(failure.key, failure.times);
        EXPECT_EQ(verify(), failure.outcome);
        EXPECT_EQ(lastWrites(failure.lastWrites.size()), failure.lastWrites);
    }
    EXPECT_EQ(platform().countLogged(">Exception when setting scan status: "), 3U) << "attempts of the last case";
}

TEST_F(HashWorkerTest, NothingOfAFailedRunIsLeftInTheNext) {
    boost::filesystem::ofstream{m_tree.path() / "file"} << "12345";
    failAfterStatusActive(resultKey, 1);
    ASSERT_EQ(verify(), "ERROR");
    ASSERT_NE(HashVerifierAPI::getFailure(), nullptr);
    platform().reset();
    EXPECT_NE(verify(), "ERROR");
    EXPECT_EQ(HashVerifierAPI::getFailure(), nullptr);
    EXPECT_EQ(HashVerifierAPI::getEntries(), 2U);
    EXPECT_EQ(HashVerifierAPI::getFileBytes(), 5U);
}

TEST_F(HashWorkerTest, StartDuringARunIsRejected) {
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

/// Provides a file that is large enough for progress to be reported while it is read.
class HashWorkerProgressTest : public HashWorkerTest {
protected:
    HashWorkerProgressTest() { boost::filesystem::ofstream{m_file} << std::setw(12'000'000) << 'x'; }

    static void setThreads(int count) {
        using Parameters = Common::DebugAndTestParameters;
        if (!Parameters::loaded()) { Parameters::loadDebugAndTestParameters("test"); }
        Common::getDebugAndTestParameters().setCustomIntParam("hashVerifierThreads", count);
    }

    const boost::filesystem::path m_file = m_tree.path() / "file";
};

TEST_F(HashWorkerProgressTest, FailedReportFailsTheRunWithAnyThreadCount) {
    for (const char* const name : {"a", "b"}) { boost::filesystem::copy_file(m_file, m_tree.path() / name); } // for helpers
    for (int threads = 1; threads < 8; ++threads) {
        setThreads(threads);
        failAfterStatusActive(progressKey, 1);
        EXPECT_EQ(verify(), "ERROR") << "the report was tried again with " << threads << " threads";
    }
}

TEST_F(HashWorkerProgressTest, FailedReportIsNoFailureOfTheDeferredEntry) {
    ::signal(SIGIO, SIG_IGN);
    const int leased = ::open(m_file.c_str(), O_RDWR | O_CLOEXEC); // the walk defers a file with a lease
    if (::fcntl(leased, F_SETLEASE, F_WRLCK) != 0) { GTEST_SKIP() << "no leases on this machine"; }
    const std::future<int> released = std::async(std::launch::async, [leased] {
        while (::fcntl(leased, F_GETLEASE) == F_WRLCK) { std::this_thread::yield(); }
        return ::fcntl(leased, F_SETLEASE, F_UNLCK);
    });
    RunOptions options;
    options.onUnreadable = [](const std::exception_ptr&) { ADD_FAILURE() << "the report counted as the entry"; };
    setThreads(3);
    failAfterStatusActive(progressKey, 1);
    EXPECT_EQ(HashVerifierAPI::nerixVerifyPath(m_tree.path().native(), "md5", options), "ERROR");
    EXPECT_EQ(::fcntl(leased, F_GETLEASE), F_UNLCK) << "the run did not open the leased file";
    ::close(leased);
}

/// MD5, except that steps over the first `times` texts that `fails` accepts throw OpenSSLException.
class FailingHash final : public HashFunctions::OpenSSLHash {
public:
    FailingHash(bool (*fails)(const std::string& text), int times) : OpenSSLHash("md5"), m_fails(fails), m_times(times) {}

    using OpenSSLHash::apply;
    hash_t apply(hash_t value, unsigned int length, const char* data) const override {
        if (m_fails({data, length}) && m_times-- > 0) { throw Common::Utils::Encoding::OpenSSLException(); }
        return OpenSSLHash::apply(value, length, data);
    }

private:
    bool (*m_fails)(const std::string& text);
    mutable std::atomic<int> m_times;
};

TEST_F(HashWorkerProgressTest, WalkTriesAgainIfTheCryptoLibraryFailsWhileHelpersRun) {
    setThreads(3);
    const std::uint64_t value = std::stoull(verify(), nullptr, 16);
    const FileInput& root = HashWorker::getInstance().getRoot();
    const FailingHash contentFails([](const std::string& text) { return text[0] == ' '; }, 2);
    EXPECT_EQ(FileScanners::Directory().process(root, 0, contentFails), value) << "content failed ahead and in front";
    const FailingHash listingFails([](const std::string& text) { return text.find('\n') == text.size() - 1; }, 1);
    EXPECT_EQ(FileScanners::Directory().process(root, 0, listingFails), value);
}

TEST_F(HashWorkerProgressTest, PlanKeepsTheMaximumOfThreadsAndTheLimitOfDescriptors) {
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const std::tuple<rlim_t, int, std::size_t, std::size_t> cases[] = {{20, 8, 1, 1},    {33, 8, 1, 1},   {34, 8, 2, 1},
                                                                       {46, 8, 8, 1},    {56, 8, 8, 2},   {1024, 8, 8, 16},
                                                                       {1024, 9, 8, 16}, {1024, 0, 1, 16}};
    for (const auto& [limit, requested, threads, entries] : cases) {
        SCOPED_TRACE(testing::Message() << requested << " threads, at most " << limit << " open files");
        setThreads(requested);
        const rlimit lower{limit, before.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &lower), 0);
        const FileScanners::ThreadPlan plan = FileScanners::planThreads(16);
        EXPECT_EQ(plan.threads, threads);
        EXPECT_EQ(plan.entriesPerThread, entries);
    }
    ::setrlimit(RLIMIT_NOFILE, &before);
}

TEST(Progress, WorkIsRoundedUpToBlocks) {
    const std::tuple<std::uint64_t, std::uint32_t, std::uint64_t> cases[] = {
        {0, 4096, 0},       {1, 4096, 4096}, {4096, 4096, 4096},
        {4097, 4096, 8192}, {4097, 0, 4097}, {(8ULL << 30U) + 1, 4096, (8ULL << 30U) + 4096}};
    for (const auto& [size, blockSize, work] : cases) {
        EXPECT_EQ(Progress::workOf(size, blockSize), work) << size << " bytes in blocks of " << blockSize;
    }
}

TEST(Progress, TextHasTwoDecimalsAndStaysBelowAHundred) {
    const std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    const std::tuple<std::uint64_t, std::uint64_t, const char*> cases[] = {
        {0, 1000, "0.00"},    {0, 0, "0.00"},        {1, 0, "99.99"},       {1000, 1000, "71.43"},
        {590, 1000, "42.14"}, {1399, 1000, "99.93"}, {1400, 1000, "99.99"}, {most, 1, "99.99"}};
    for (const auto& [reported, total, text] : cases) {
        EXPECT_EQ(Progress::text(reported, total), text) << reported << " of " << total;
    }
}

TEST(HashWorkerDeathTest, GetResultBeforeFirstRunAborts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a new process, in which no run has finished
    EXPECT_EQ(HashVerifierAPI::getProgress(), "0.00");
    EXPECT_DEATH(HashVerifierAPI::getResult(), "ASSERTION FAILED: !m_calculatedHash.empty\\(\\), ");
}

} // namespace
} // namespace Nerix::Tests
