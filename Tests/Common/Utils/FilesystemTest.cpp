#include "Common/Utils/Filesystem.h"
#include "Common/Utils/Errors/Errors.h"

#include <gtest/gtest.h>

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
        } else {
            EXPECT_THROW(filesystem::removePathPrefix(expected.path, expected.prefix),
                         Common::Utils::GenericException);
        }
    }
}

} // namespace
} // namespace Nerix::Tests
