#include "ExecutablesLibraries/HashVerifierAPI/Mounts/MountPoints.h"

#include "Common/Base/NoDestructor.h"
#include "Common/Utils/Filesystem.h"
#include "Platform/Product/IProductInfo.h"

#include <algorithm>
#include <fstream>

namespace Nerix {

namespace {

/// Removes the first word from line and returns it. Only spaces and tabs separate words: the kernel escapes
/// these, line feeds and backslashes, but no other white space in names.
std::string takeWord(std::string& line) {
    const std::size_t begin = std::min(line.find_first_not_of(" \t"), line.size());
    const std::size_t end = std::min(line.find_first_of(" \t", begin), line.size());
    std::string word = line.substr(begin, end - begin);
    line.erase(0, end);
    return word;
}

} // namespace

MountPoints& MountPoints::getInstance() {
    static Common::NoDestructor<MountPoints> instance; // the worker may use it while the process ends
    return *instance;
}

MountPoints::MountPoints() : MountPoints(std::ifstream("/proc/mounts")) {}

MountPoints::MountPoints(std::istream&& table) {
    for (std::string line; std::getline(table, line);) {
        const std::string device = takeWord(line);
        const std::string directory = takeWord(line);
        if (directory != "/") {
            m_mountOrder.push_back(directory);
            m_mountPoints[directory] = device;
        }
    }
}

std::string MountPoints::findUSB() const {
    using Common::Utils::filesystem::pathStartsWith;
    using Platform::IProductInfo;
    const std::string root = IProductInfo::getFileSystemRootPath();
    // An empty root means "/": without it, "media/" would be a relative path, which matches no mount
    // directory.
    const boost::filesystem::path media = boost::filesystem::path(root.empty() ? "/" : root) / "media/";
    const boost::filesystem::path usb = IProductInfo::getUSBMountPath();
    std::string found;
    for (const std::string& directory : m_mountOrder) {
        if (pathStartsWith(directory, media) || (!usb.empty() && pathStartsWith(directory, usb))) {
            found = directory;
        }
    }
    return found;
}

} // namespace Nerix
