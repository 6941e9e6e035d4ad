#include "Debug/DebugAndTestParameters/ParametersFile.h"

#include <boost/filesystem/operations.hpp>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace Nerix::ParametersFile {

std::ifstream open(const std::string& path) {
    boost::system::error_code error;
    return boost::filesystem::is_regular_file(path, error) ? std::ifstream(path) : std::ifstream();
}

void replace(const std::string& path, const std::string& text) {
    const std::string anew = path + ".new";
    errno = 0;
    std::ofstream file(anew);
    file << text;
    file.close();
    if (!file || std::rename(anew.c_str(), path.c_str()) != 0) {
        const int error = errno;
        std::remove(anew.c_str());
        throw std::system_error(error, std::generic_category(), "cannot write");
    }
}

} // namespace Nerix::ParametersFile
