#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntrySteps.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileScanners.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/SymbolicLink.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"

#include "Common/Utils/Errors.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/exception/get_error_info.hpp>
#include <boost/filesystem/fstream.hpp>
#include <gtest/gtest.h>

#include <locale>

#include <sys/xattr.h>

namespace Nerix::Tests {
namespace {

/// Remembers what it is fed, step by step; the value counts the steps.
class RecordingHash : public IHashFunction {
public:
    hash_t apply(hash_t value, unsigned int length, const char* data) const override {
        steps.emplace_back(data, length);
        return value + 1;
    }
    hash_t apply(hash_t value, const std::string& text) const override {
        steps.push_back(text);
        return value + 1;
    }
    hash_t apply(hash_t value, std::FILE*) const override {
        steps.emplace_back("(content)");
        return value + 1;
    }

    mutable std::vector<std::string> steps;
};

/// Numbers with digit grouping, as some locales have them.
struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(StatusText, ShowsOwnerLinksAndModeBits) {
    const struct {
        mode_t mode;
        uid_t owner;
        gid_t group;
        nlink_t links;
        const char* expected;
    } cases[] = {
        {S_IFREG | 0644, 0, 0, 1, "0\n0\n1\nURUWuxGRgwgxORowox\nsusgsb\n"},
        {S_IFREG | 04755, 1000, 100, 2, "1000\n100\n2\nURUWUXGRgwGXORowOX\nSUsgsb\n"},
        {S_IFDIR | 01777, 4294967295U, 1, 12345, "4294967295\n1\n12345\nURUWUXGRGWGXOROWOX\nsusgSB\n"},
        {S_IFLNK | 02000, 0, 0, 1, "0\n0\n1\nuruwuxgrgwgxorowox\nsuSGsb\n"},
    };
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    FileInput entry("/");
    for (const auto& expected : cases) {
        entry.status.st_mode = expected.mode;
        entry.status.st_uid = expected.owner;
        entry.status.st_gid = expected.group;
        entry.status.st_nlink = expected.links;
        EXPECT_EQ(FileScanners::statusText(entry), expected.expected);
    }
    std::locale::global(before);
}

TEST(Scanners, EntriesAreFedInOrder) {
    const TemporaryDirectory directory;
    const boost::filesystem::path file = directory.path() / "file";
    boost::filesystem::ofstream(file) << "text";
    if (::setxattr(file.c_str(), "user.b", "1", 1, 0) != 0) {
        GTEST_SKIP() << "no user attributes on " << directory.path();
    }
    ::setxattr(file.c_str(), "user.a", "", 0, 0);
    boost::filesystem::create_symlink("t", directory.path() / "link");

    const RecordingHash hash;
    const FileInput fileEntry(file);
    EXPECT_EQ(FileScanners::getInstance(fileEntry).process(fileEntry, 10, hash), 19U);
    const FileInput link(directory.path() / "link");
    EXPECT_EQ(FileScanners::getInstance(link).process(link, 0, hash), 3U);
    EXPECT_EQ(hash.steps,
              (std::vector<std::string>{file.native(), FileScanners::statusText(fileEntry), "user.a",
                                        "separator", "", "user.b", "separator", "1", "(content)",
                                        link.path.native(), FileScanners::statusText(link), "t"}));
}

TEST(Scanners, FailuresNameTheEntry) {
    const TemporaryDirectory directory;
    const boost::filesystem::path path = directory.path() / "a\"b";
    const auto failureOf = [](const auto& operation) -> std::string {
        try {
            operation();
            return "none";
        } catch (const Common::Utils::GenericException& exception) {
            using Stream = boost::error_info<Common::Utils::tag_errinfo_stream, std::string>;
            return *boost::get_error_info<Stream>(exception);
        }
    };
    const std::string quoted = "\"" + directory.path().native() + "/a&\"b\"";
    EXPECT_EQ(failureOf([&] { const FileInput missing(path); }), "access error: can't LSTAT file: " + quoted);

    boost::filesystem::ofstream(path) << "x";
    const FileInput entry(path);
    EXPECT_EQ(failureOf([&] { FileScanners::SymbolicLink().process(entry, 0, RecordingHash()); }),
              "access error: can't read symlink: " + quoted);
    const IFileScanner& regular = FileScanners::getInstance(entry);
    boost::filesystem::remove(path);
    EXPECT_EQ(failureOf([&] { regular.process(entry, 0, RecordingHash()); }),
              "access error: can't read xattrs for file: " + quoted);
    EXPECT_EQ(failureOf([&] { FileScanners::getInstance(entry); }),
              "access error: can't LSTAT file: " + quoted);
}

} // namespace
} // namespace Nerix::Tests
