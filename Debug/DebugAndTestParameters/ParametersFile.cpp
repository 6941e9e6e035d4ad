#include "Debug/DebugAndTestParameters/ParametersFile.h"

#include "Common/Utils/Filesystem.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace Nerix::ParametersFile {

void write(const std::string& path, const std::string& text) {
    errno = 0;
    std::ofstream file = Common::Utils::filesystem::openRegularFileToWrite(path);
    file << text;
    file.close();
    if (!file) {
        throw std::system_error(errno, std::generic_category(), "cannot write");
    }
}

} // namespace Nerix::ParametersFile
