#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Filesystem.h"
#include "Common/Utils/TerminationSignals.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/filesystem/exception.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <set>
#include <thread>
#include <tuple>

#include <sys/stat.h>
#include <unistd.h>

namespace Nerix::Tests {

namespace filesystem = Common::Utils::filesystem;

TEST(Filesystem, QueriesDoNotFollowLinks) {
    const TemporaryDirectory directory;
    const auto at = [&](const char* name) { return directory.path() / name; };
    boost::filesystem::ofstream(at("file")) << "content";
    boost::filesystem::create_directory(at("directory"));
    boost::filesystem::create_symlink("directory", at("link"));
    boost::filesystem::create_symlink("file", at("file link"));
    boost::filesystem::create_symlink("nowhere", at("dangling"));
    ::mkfifo(at("fifo").c_str(), 0600);
    using Names = std::set<std::string>;
    const Names existing = {"file", "directory", "link", "file link", "dangling", "fifo"};
    const auto namesWhere = [&](const std::function<bool(const boost::filesystem::path&)>& holds) {
        Names found;
        for (const char* const name : {"file", "directory", "link", "file link", "dangling", "fifo", "missing"}) {
            if (holds(at(name))) { found.insert(name); }
        }
        return found;
    };
    EXPECT_EQ(namesWhere(filesystem::exists_any), existing);
    EXPECT_EQ(namesWhere(filesystem::is_directory), Names{"directory"});
    EXPECT_EQ(namesWhere(filesystem::is_regular_file), Names{"file"});
    EXPECT_EQ(namesWhere(filesystem::is_symlink), (Names{"link", "file link", "dangling"}));
    EXPECT_EQ(namesWhere([](const auto& path) { return filesystem::waitForFile(path, 0); }), existing);
    EXPECT_TRUE(filesystem::waitForFile(at("dangling")));
    const auto opens = [](const auto& path) { return filesystem::openRegularFile(path).is_open(); };
    EXPECT_EQ(namesWhere(opens), (Names{"file", "file link"})) << "opening follows links";
}

TEST(Filesystem, WaitForFileWaitsForSeconds) {
    const TemporaryDirectory directory;
    std::thread creating([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(1200));
        boost::filesystem::ofstream(directory.path() / "file") << "content";
    });
    EXPECT_TRUE(filesystem::waitForFile(directory.path() / "file", 20));
    creating.join();
}

TEST(Filesystem, CanonicalFollowsLinks) {
    const TemporaryDirectory directory;
    boost::filesystem::create_directories(directory.path() / "real/inner");
    boost::filesystem::create_symlink("real/inner", directory.path() / "link");
    EXPECT_EQ(filesystem::canonical("link/..", directory.path()), boost::filesystem::canonical(directory.path()) / "real");
}

TEST(Filesystem, RenameReplacesAndRemoveReportsWhatExisted) {
    const TemporaryDirectory directory;
    const boost::filesystem::path fifo = directory.path() / "fifo";
    boost::filesystem::ofstream(directory.path() / "file") << "content";
    ::mkfifo(fifo.c_str(), 0600);
    filesystem::rename(directory.path() / "file", fifo);
    EXPECT_EQ(contentOf(fifo), "content");
    EXPECT_TRUE(filesystem::remove(fifo));
    EXPECT_FALSE(filesystem::remove(fifo));
}

TEST(Filesystem, FailuresNameTheOperationAndThePath) {
    const boost::filesystem::path bad = "/" + std::string(300, 'x');
    const std::string path = "Path: \"" + bad.native() + '"';
    const std::tuple<const char*, std::string, std::function<void()>> cases[] = {
        {"::exists_any(", path, [&] { filesystem::exists_any(bad); }},
        {"::is_directory(", path, [&] { filesystem::is_directory(bad); }},
        {"::is_regular_file(", path, [&] { filesystem::is_regular_file(bad); }},
        {"::is_symlink(", path, [&] { filesystem::is_symlink(bad); }},
        {"::remove(", "Path: \"/proc/self/status\"", [] { filesystem::remove("/proc/self/status"); }},
        {"::rename(", "Old path: \"/no/x\", new path: \"/no/y\"", [] { filesystem::rename("/no/x", "/no/y"); }},
        {"::canonical(", "Path: \"missing\", base: \"/no\"", [] { filesystem::canonical("missing", "/no"); }},
    };
    for (const auto& [name, context, operation] : cases) {
        FakePlatform::instance().reset();
        EXPECT_THROW(operation(), boost::filesystem::filesystem_error) << name;
        EXPECT_EQ(FakePlatform::instance().countLogged(name), 1U) << name;
        EXPECT_EQ(FakePlatform::instance().countLogged(") " + context), 1U) << name;
    }
}

/// Raises SIGTERM and, after a while, another signal. If the process goes on, prints the remembered signal and exits.
void raiseSigtermAndLater(int milliseconds, int number) {
    for (const int each : {SIGINT, SIGHUP}) { std::signal(each, SIG_DFL); } // nohup has them ignored
    Common::Utils::catchTerminationSignals();
    std::raise(SIGTERM);
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    std::raise(number);
    std::fprintf(stderr, "remembers %d", Common::Utils::terminationSignal());
    std::exit(0);
}

TEST(TerminationSignalsDeathTest, SecondSignalTerminatesUnlessItComesAtOnce) {
    EXPECT_EXIT(raiseSigtermAndLater(0, SIGHUP), testing::KilledBySignal(SIGTERM), "^remembers 15$");
    EXPECT_EXIT(raiseSigtermAndLater(20, SIGINT), testing::KilledBySignal(SIGTERM), "^remembers 15$");
    EXPECT_EXIT(raiseSigtermAndLater(250, SIGINT), testing::KilledBySignal(SIGINT), "^$");
}

/// Reads from a pipe while SIGTERM arrives, prints the result and exits.
void readDuringASignal() {
    Common::Utils::catchTerminationSignals();
    int pipe[2];
    if (::pipe(pipe) != 0) { return; }
    std::thread signalling([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        ::kill(::getpid(), SIGTERM); // goes to the main thread, which reads
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        ::close(pipe[1]);
    });
    char byte = 0;
    const ssize_t count = ::read(pipe[0], &byte, 1);
    signalling.join();
    std::fprintf(stderr, "read %d", static_cast<int>(count));
    std::exit(0);
}

TEST(TerminationSignalsDeathTest, SignalInterruptsNoSystemCall) {
    EXPECT_EXIT(readDuringASignal(), testing::KilledBySignal(SIGTERM), "^read 0$");
}

TEST(TerminationSignalsDeathTest, IgnoredSignalStaysIgnored) {
    EXPECT_EXIT(std::signal(SIGHUP, SIG_IGN); Common::Utils::catchTerminationSignals(); std::raise(SIGHUP);
                std::exit(Common::Utils::terminationSignal()), testing::ExitedWithCode(0), "");
}

TEST(Filesystem, TrailingSlashesAreStrippedButTheRoots) {
    const std::pair<const char*, const char*> stripped[] = {{"/a/b/", "/a/b"}, {"/a//", "/a"}, {"/", "/"}, {"a/", "a"}};
    for (const auto& [path, expected] : stripped) { EXPECT_EQ(filesystem::stripTrailingSlashes(path), expected) << path; }
}

TEST(Filesystem, UnixAbsoluteBeginsWithASlashOrBackslash) {
    for (const char* const path : {"/a", "\\a"}) { EXPECT_TRUE(filesystem::is_unix_absolute(path)) << path; }
    for (const char* const path : {"a/", ""}) { EXPECT_FALSE(filesystem::is_unix_absolute(path)) << path; }
}

TEST(Filesystem, PrefixOfWholeElementsIsRemoved) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"/mnt/usb", "/mnt/usb/", "/"}, {"/mnt/usb/a/b", "/mnt/usb/", "/a/b"}, {"/a/b", "", "/a/b"}, {"a/b", "a", "/b"},
        {"/a/b", "/", "/a/b"},          {"/mnt/usb2/x", "/mnt/usb", ""},       {"/a", "/a/b", ""},   {"/a/b", "a", ""}};
    for (const auto& [path, prefix, rest] : cases) {
        SCOPED_TRACE(std::string(path) + " and " + prefix);
        const bool isPrefix = *rest != '\0';
        EXPECT_EQ(filesystem::pathStartsWith(path, prefix), isPrefix);
        if (isPrefix) {
            EXPECT_EQ(filesystem::removePathPrefix(path, prefix), rest);
        } else {
            EXPECT_THROW(filesystem::removePathPrefix(path, prefix), Common::Utils::GenericException);
        }
    }
}

} // namespace Nerix::Tests
