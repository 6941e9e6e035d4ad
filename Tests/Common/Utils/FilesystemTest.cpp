#include "Common/Utils/Filesystem.h"
#include "Common/Utils/Errors.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/exception/get_error_info.hpp>
#include <boost/filesystem/exception.hpp>
#include <boost/filesystem/fstream.hpp>
#include <gtest/gtest.h>

#include <thread>

namespace Nerix::Tests {
namespace {

namespace filesystem = Common::Utils::filesystem;

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
        }
    }
    try {
        filesystem::removePathPrefix("/a/b", "/c/");
        FAIL();
    } catch (const Common::Utils::GenericException& exception) {
        using Stream = boost::error_info<Common::Utils::tag_errinfo_stream, std::string>;
        EXPECT_EQ(*boost::get_error_info<Stream>(exception),
                  "Path '\"/a/b\"' doesn't start with prefix '\"/c/\"'.");
    }
}

TEST(Filesystem, QueriesDoNotFollowLinks) {
    const TemporaryDirectory directory;
    boost::filesystem::ofstream(directory.path() / "file") << "x";
    boost::filesystem::create_symlink("nowhere", directory.path() / "dangling");
    boost::filesystem::create_symlink(directory.path(), directory.path() / "toDirectory");
    const struct {
        const char* name;
        bool exists, isDirectory, isRegular, isLink;
    } cases[] = {
        {".", true, true, false, false},         {"file", true, false, true, false},
        {"dangling", true, false, false, true},  {"toDirectory", true, false, false, true},
        {"missing", false, false, false, false},
    };
    for (const auto& expected : cases) {
        const boost::filesystem::path path = directory.path() / expected.name;
        EXPECT_EQ(filesystem::exists_any(path), expected.exists) << path;
        EXPECT_EQ(filesystem::is_directory(path), expected.isDirectory) << path;
        EXPECT_EQ(filesystem::is_regular_file(path), expected.isRegular) << path;
        EXPECT_EQ(filesystem::is_symlink(path), expected.isLink) << path;
    }
    EXPECT_EQ(filesystem::canonical("toDirectory/file", directory.path()),
              boost::filesystem::canonical(directory.path()) / "file");
    filesystem::rename(directory.path() / "file", directory.path() / "moved");
    EXPECT_TRUE(filesystem::remove(directory.path() / "moved"));
    EXPECT_FALSE(filesystem::remove(directory.path() / "moved"));
}

TEST(Filesystem, FailuresLeaveAContextLineInTheLog) {
    FakePlatform::instance().reset();
    EXPECT_THROW(filesystem::canonical("missing", "/base"), boost::filesystem::filesystem_error);
    EXPECT_THROW(filesystem::rename("/missing/a", "/missing/b"), boost::filesystem::filesystem_error);
    for (const char* const line :
         {") Path: \"missing\", base: \"/base\"", ") Old path: \"/missing/a\", new path: \"/missing/b\""}) {
        EXPECT_EQ(FakePlatform::instance().logHolding(line).size(), 1U) << line;
    }
}

} // namespace
} // namespace Nerix::Tests
