#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/MountPoints.h"

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

} // namespace Nerix
