#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/MountPoints.h"

#include "Common/Utils/Filesystem.h"
#include "Platform/Product/IProductInfo.h"

#include <fstream>
#include <sstream>

namespace Nerix {

MountPoints& MountPoints::getInstance() {
    static MountPoints instance = [] {
        std::ifstream table("/proc/mounts");
        return MountPoints(table);
    }();
    return instance;
}

MountPoints::MountPoints(std::istream& table) {
    for (std::string line; std::getline(table, line);) {
        std::istringstream words(line);
        std::string device;
        std::string directory;
        words >> device >> directory;
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
