#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"

#include "Common/Utils/Errors/Errors.h"

#include <utility>

namespace Nerix {

FileInput::FileInput(boost::filesystem::path entryPath)
    : path(std::move(entryPath)), status(statusOf(path)) {}

struct stat statusOf(const boost::filesystem::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        BOOST_THROW_EXCEPTION(Common::Utils::GenericException()
                              << Common::Utils::errinfo_stream("access error: can't LSTAT file: ", path));
    }
    return status;
}

} // namespace Nerix
