#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/AccessError.h"

#include <cerrno>

#include <utility>

namespace Nerix {

FileInput::FileInput(boost::filesystem::path entryPath)
    : path(std::move(entryPath)), status(statusOf(path)) {}

struct stat statusOf(const boost::filesystem::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        BOOST_THROW_EXCEPTION(FileScanners::accessError("examine", path, errno)
                              << Common::Utils::errinfo_stream("access error: can't LSTAT file: ", path));
    }
    return status;
}

} // namespace Nerix
