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

void examineWhole(const FileInput& entry) { Regular().examine(entry, 0, HashFunctions::NoHashFunction()); }

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
    } catch (const boost::exception& failure) { return *boost::get_error_info<Common::Utils::errinfo_errorcode>(failure); }
}

} // namespace

TEST(Content, WhatTookThePlaceOfAFileIsNotRead) {
    const Tests::TemporaryDirectory directory;
    const boost::filesystem::path file = directory.path() / "file";
    const boost::filesystem::path other = directory.path() / "other";
    for (const boost::filesystem::path& each : {file, other}) { boost::filesystem::ofstream(each) << "12345"; }
    const FileInput entry(file);
    boost::filesystem::remove(file);
    boost::filesystem::create_symlink(other, file);
    EXPECT_EQ(errorOf(&examineWhole, entry), ELOOP) << "a link";
    EXPECT_EQ(errorOf(&examineByTexts, entry), ELOOP) << "a link";
    boost::filesystem::remove(file);
    ::mkfifo(file.c_str(), 0600);
    EXPECT_EQ(errorOf(&examineWhole, entry), 0) << "a FIFO, which counts as a change";
    EXPECT_EQ(errorOf(&examineByTexts, entry), 0) << "a FIFO, which counts as a change";
}

} // namespace Nerix::FileScanners
