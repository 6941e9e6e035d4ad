#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileScanners.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntrySteps.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctionBase.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/filesystem/fstream.hpp>
#include <gtest/gtest.h>

#include <sys/xattr.h>

namespace Nerix::Tests {
namespace {

using Steps = std::vector<std::string>;

/// Remembers what it is fed; the value counts the steps.
class RecordingFunction final : public HashFunctions::HashFunctionBase {
public:
    using HashFunctionBase::apply;
    hash_t apply(hash_t value, unsigned int length, const char* data) const override {
        steps.emplace_back(data, length);
        return value + 1;
    }
    mutable Steps steps;
};

class FileScannersTest : public testing::Test {
protected:
    FileScannersTest() {
        boost::filesystem::ofstream(m_tree.path() / "file") << std::string(4096, 'x') << 'y';
        boost::filesystem::create_directory(m_tree.path() / "directory");
        boost::filesystem::create_symlink("target", m_tree.path() / "link");
        ::mkfifo((m_tree.path() / "fifo").c_str(), 0600);
    }

    FileInput entry(const std::string& name) const { return FileInput(m_tree.path() / name); }

    const TemporaryDirectory m_tree;
};

TEST_F(FileScannersTest, JudgementNeedsNoRun) {
    const dev_t device = entry("directory").status.st_dev;
    const FileInput mountPoint("/proc");
    const struct {
        FileInput entry;
        dev_t rootDevice;
        Judgement judgement;
    } cases[] = {
        {entry("file"), device + 1, Judgement::accepted},
        {entry("link"), device + 1, Judgement::accepted},
        {entry("fifo"), device, Judgement::ignored},
        {entry("directory"), device, Judgement::accepted},
        {entry("directory/.."), device, Judgement::ignored},
        {entry("directory"), device + 1, Judgement::otherDevice},
        {mountPoint, mountPoint.status.st_dev, Judgement::mountPoint},
        {mountPoint, mountPoint.status.st_dev + 1, Judgement::otherDevice},
    };
    for (const auto& expected : cases) {
        const IFileScanner& scanner = FileScanners::getInstance(expected.entry);
        EXPECT_EQ(scanner.judge(expected.entry, expected.rootDevice), expected.judgement)
            << expected.entry.path << expected.rootDevice;
    }
}

TEST_F(FileScannersTest, ExaminingTakesTheStepsOfTheEntryItself) {
    const auto path = [&](const char* name) { return (m_tree.path() / name).native(); };
    const auto status = [&](const char* name) { return FileScanners::statusText(entry(name)); };
    const std::pair<const char*, Steps> cases[] = {
        {"file", {path("file"), status("file"), std::string(4096, 'x'), "y"}},
        {"directory", {path("directory"), status("directory")}},
        {"link", {path("link"), status("link"), "target"}},
        {"fifo", {}},
    };
    for (const auto& [name, expected] : cases) {
        const RecordingFunction function;
        EXPECT_EQ(FileScanners::getInstance(entry(name)).examine(entry(name), 7, function),
                  7 + expected.size());
        EXPECT_EQ(function.steps, expected) << name;
    }
}

TEST_F(FileScannersTest, AttributesComeInTheOrderOfTheirNames) {
    const FileInput file = entry("file");
    if (::setxattr(file.path.c_str(), "trusted.b", "", 0, 0) != 0 ||
        ::setxattr(file.path.c_str(), "trusted.a", "\0z", 2, 0) != 0) {
        GTEST_SKIP() << "no privilege for attributes";
    }
    const RecordingFunction function;
    EXPECT_EQ(FileScanners::hashxtattr(file, 0, function), 6U);
    EXPECT_EQ(function.steps,
              (Steps{"trusted.a", "separator", std::string("\0z", 2), "trusted.b", "separator", ""}));
}

} // namespace
} // namespace Nerix::Tests
