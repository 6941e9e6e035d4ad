#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntryTexts.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Regular.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/NoHashFunction.h"

#include "Common/Utils/Errors/Errors.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/exception/get_error_info.hpp>
#include <gtest/gtest.h>

#include <cerrno>
#include <optional>

#include <sys/stat.h>

namespace Nerix::FileScanners {

namespace {

void examineWhole(const FileInput& entry) {
    Regular().examine(entry, 0, HashFunctions::NoHashFunction());
}

void examineByTexts(const FileInput& entry) {
    EntryTexts::Buffer buffer(8192);
    EntryTexts texts(entry, IFileScanner::Remainder::content, buffer, EntryTexts::Lease::wait);
    std::string_view text;
    while (texts.next(text)) {}
}

/// Returns the errno that the failure to examine the entry carries; 0 if it changed, nullopt if nothing failed.
std::optional<int> errorOf(void (*examine)(const FileInput&), const FileInput& entry) {
    try {
        examine(entry);
        return std::nullopt;
    } catch (const boost::exception& failure) {
        return *boost::get_error_info<Common::Utils::errinfo_errorcode>(failure);
    }
}

constexpr void (*ways[])(const FileInput&) = {&examineWhole, &examineByTexts};

/// A file of five bytes, whose status was read.
class ContentTest : public testing::Test {
protected:
    ContentTest() : file(directory.path() / "file"), other(directory.path() / "other") {
        for (const boost::filesystem::path& each : {file, other}) { boost::filesystem::ofstream(each) << "12345"; }
        entry.emplace(file);
        boost::filesystem::remove(file);
    }

    const Tests::TemporaryDirectory directory;
    const boost::filesystem::path file;
    const boost::filesystem::path other;
    std::optional<FileInput> entry;
};

} // namespace

TEST_F(ContentTest, LinkThatTookThePlaceOfTheFileIsNotFollowed) {
    boost::filesystem::create_symlink(other, file);
    for (const auto way : ways) { EXPECT_EQ(errorOf(way, *entry), ELOOP); }
}

TEST_F(ContentTest, FifoThatTookThePlaceOfTheFileFailsAsAChange) {
    ::mkfifo(file.c_str(), 0600);
    for (const auto way : ways) { EXPECT_EQ(errorOf(way, *entry), 0); }
}

TEST_F(ContentTest, FileOfAnotherSizeIsRead) {
    boost::filesystem::ofstream(file) << "123456789";
    for (const auto way : ways) { EXPECT_EQ(errorOf(way, *entry), std::nullopt); }
}

} // namespace Nerix::FileScanners
