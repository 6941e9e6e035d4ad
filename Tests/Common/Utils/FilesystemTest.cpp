#include "Common/Utils/Filesystem.h"
#include "Common/Utils/Errors/Errors.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/filesystem/exception.hpp>
#include <boost/filesystem/fstream.hpp>
#include <gtest/gtest.h>

#include <functional>

#include <sys/stat.h>

namespace Nerix::Tests {
namespace {

namespace filesystem = Common::Utils::filesystem;

TEST(Filesystem, EntriesAreTakenAsTheyAre) {
    const TemporaryDirectory directory;
    const auto at = [&](const char* name) { return directory.path() / name; };
    boost::filesystem::ofstream(at("file")) << "content";
    boost::filesystem::create_directory(at("directory"));
    boost::filesystem::create_symlink("directory", at("link"));
    boost::filesystem::create_symlink("file", at("file link"));
    boost::filesystem::create_symlink("nowhere", at("dangling"));
    ::mkfifo(at("fifo").c_str(), 0600);
    const struct {
        const char* name;
        bool exists, isDirectory, isFile, isLink, opens;
    } cases[] = {
        {"file", true, false, true, false, true},       {"directory", true, true, false, false, false},
        {"link", true, false, false, true, false},      {"file link", true, false, false, true, true},
        {"dangling", true, false, false, true, false},  {"fifo", true, false, false, false, false},
        {"missing", false, false, false, false, false},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        const boost::filesystem::path path = at(expected.name);
        EXPECT_EQ(filesystem::exists_any(path), expected.exists);
        EXPECT_EQ(filesystem::is_directory(path), expected.isDirectory);
        EXPECT_EQ(filesystem::is_regular_file(path), expected.isFile);
        EXPECT_EQ(filesystem::is_symlink(path), expected.isLink);
        EXPECT_EQ(filesystem::openRegularFile(path).is_open(), expected.opens);
        EXPECT_EQ(filesystem::waitForFile(path, 0), expected.exists);
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
    const boost::filesystem::path bad = "/proc/self/status/x"; // below a file
    const boost::filesystem::path loop = "/proc/self/fd/" + std::string(5000, 'x');
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"::exists_any(", [&] { filesystem::exists_any(loop); }},
        {"::is_directory(", [&] { filesystem::is_directory(loop); }},
        {"::is_regular_file(", [&] { filesystem::is_regular_file(loop); }},
        {"::is_symlink(", [&] { filesystem::is_symlink(loop); }},
        {"::remove(", [&] { filesystem::remove("/proc/self/status"); }},
        {"::rename(", [&] { filesystem::rename(bad, "/nowhere/y"); }},
        {"::canonical(", [&] { filesystem::canonical("missing", "/nowhere"); }},
    };
    for (const auto& [name, operation] : cases) {
        FakePlatform::instance().reset();
        EXPECT_THROW(operation(), boost::filesystem::filesystem_error) << name;
        EXPECT_EQ(FakePlatform::instance().logged(name), 1U) << name;
    }
    EXPECT_EQ(FakePlatform::instance().logged(") Path: \"missing\", base: \"/nowhere\""), 1U);
}

TEST(Filesystem, SeparatorsAtTheEnds) {
    const std::pair<const char*, const char*> stripped[] = {{"/a/b/", "/a/b"}, {"/a//", "/a"}, {"/a", "/a"},
                                                            {"/", "/"},        {"", ""},       {"a/", "a"}};
    for (const auto& [path, expected] : stripped) {
        EXPECT_EQ(filesystem::stripTrailingSlashes(path).native(), expected) << path;
    }
    EXPECT_TRUE(filesystem::is_unix_absolute("/a") && filesystem::is_unix_absolute("\\a"));
    EXPECT_FALSE(filesystem::is_unix_absolute("a/") || filesystem::is_unix_absolute(""));
}

TEST(Filesystem, PrefixesMatchWholeElements) {
    const struct {
        const char* path;
        const char* prefix;
        const char* rest; ///< null: no prefix
    } cases[] = {
        {"/mnt/usb2/x", "/mnt/usb", nullptr},
        {"/mnt/usb", "/mnt/usb/", "/"},
        {"/a", "/a/b", nullptr},
        {"/mnt/usb/dir/file", "/mnt/usb/", "/dir/file"},
        {"/a/b", "", "/a/b"},
        {"a/b", "a", "/b"},
        {"/a/b", "/", "/a/b"},
        {"/a/b", "a", nullptr},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(std::string(expected.path) + " and " + expected.prefix);
        EXPECT_EQ(filesystem::pathStartsWith(expected.path, expected.prefix), expected.rest != nullptr);
        if (expected.rest != nullptr) {
            EXPECT_EQ(filesystem::removePathPrefix(expected.path, expected.prefix).native(), expected.rest);
        } else {
            EXPECT_THROW(filesystem::removePathPrefix(expected.path, expected.prefix), Common::Utils::GenericException);
        }
    }
}

} // namespace
} // namespace Nerix::Tests
