#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Filesystem.h"
#include "Common/Utils/TerminationSignals.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/filesystem/exception.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <thread>
#include <tuple>

#include <sys/stat.h>

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
    for (const std::string known :
         {"file: exists, file, opens", "directory: exists, directory", "link: exists, link",
          "file link: exists, link, opens", "dangling: exists, link", "fifo: exists", "missing:"}) {
        SCOPED_TRACE(known);
        const boost::filesystem::path path = at(known.substr(0, known.find(':')).c_str());
        const std::string is = known.substr(known.find(':'));
        EXPECT_EQ(filesystem::exists_any(path), contains(is, "exists"));
        EXPECT_EQ(filesystem::is_directory(path), contains(is, "directory"));
        EXPECT_EQ(filesystem::is_regular_file(path), contains(is, "file"));
        EXPECT_EQ(filesystem::is_symlink(path), contains(is, "link"));
        EXPECT_EQ(filesystem::openRegularFile(path).is_open(), contains(is, "opens"));
        EXPECT_EQ(filesystem::waitForFile(path, 0), contains(is, "exists"));
    }
    EXPECT_TRUE(filesystem::waitForFile(at("dangling")));
    EXPECT_EQ(filesystem::canonical("link/../file", directory.path()),
              boost::filesystem::canonical(directory.path()) / "file");
    filesystem::rename(at("file"), at("fifo"));
    EXPECT_TRUE(filesystem::is_regular_file(at("fifo")));
    EXPECT_TRUE(filesystem::remove(at("fifo")));
    EXPECT_FALSE(filesystem::remove(at("fifo")));
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

TEST(TerminationSignalsDeathTest, FirstSignalIsRememberedSecondTerminates) {
    using namespace Common::Utils;
    const auto signalsAfter = [](int milliseconds, int number) {
        for (const int each : {SIGINT, SIGHUP}) { std::signal(each, SIG_DFL); } // nohup has them ignored
        catchTerminationSignals();
        std::raise(SIGTERM);
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        std::raise(number);
        std::fprintf(stderr, "remembers %d", terminationSignal());
        std::exit(0);
    };
    EXPECT_EXIT(signalsAfter(0, SIGHUP), testing::KilledBySignal(SIGTERM), "remembers 15");
    EXPECT_EXIT(signalsAfter(20, SIGINT), testing::KilledBySignal(SIGTERM), "remembers 15");
    EXPECT_EXIT(signalsAfter(250, SIGINT), testing::KilledBySignal(SIGINT), "^$");
    EXPECT_EXIT(std::signal(SIGHUP, SIG_IGN); catchTerminationSignals(); std::raise(SIGHUP);
                std::exit(terminationSignal()), testing::ExitedWithCode(0), "");
}

TEST(Filesystem, PathsAreComparedByWholeElements) {
    const std::pair<const char*, const char*> stripped[] = {{"/a/b/", "/a/b"}, {"/a//", "/a"}, {"/", "/"}, {"a/", "a"}};
    for (const auto& [path, expected] : stripped) { EXPECT_EQ(filesystem::stripTrailingSlashes(path), expected) << path; }
    EXPECT_TRUE(filesystem::is_unix_absolute("/a"));
    EXPECT_TRUE(filesystem::is_unix_absolute("\\a"));
    EXPECT_FALSE(filesystem::is_unix_absolute("a/"));
    EXPECT_FALSE(filesystem::is_unix_absolute(""));
    const std::tuple<const char*, const char*, const char*> cases[] = {
        // path, prefix, and what is left; null: no prefix
        {"/mnt/usb2/x", "/mnt/usb", nullptr},
        {"/mnt/usb", "/mnt/usb/", "/"},
        {"/mnt/usb/a/b", "/mnt/usb/", "/a/b"},
        {"/a", "/a/b", nullptr},
        {"/a/b", "", "/a/b"},
        {"a/b", "a", "/b"},
        {"/a/b", "/", "/a/b"},
        {"/a/b", "a", nullptr},
    };
    for (const auto& [path, prefix, rest] : cases) {
        SCOPED_TRACE(std::string(path) + " and " + prefix);
        EXPECT_EQ(filesystem::pathStartsWith(path, prefix), rest != nullptr);
        if (rest == nullptr) {
            EXPECT_THROW(filesystem::removePathPrefix(path, prefix), Common::Utils::GenericException);
        } else {
            EXPECT_EQ(filesystem::removePathPrefix(path, prefix), rest);
        }
    }
}

} // namespace Nerix::Tests
