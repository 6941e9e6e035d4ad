#include "Debug/DebugAndTestParameters/ParametersFile.h"

#include <boost/filesystem/operations.hpp>

#include <cerrno>
#include <system_error>

namespace Nerix::ParametersFile {

std::ifstream open(const std::string& path) {
    boost::system::error_code error;
    return boost::filesystem::is_regular_file(path, error) ? std::ifstream(path) : std::ifstream();
}

void write(const std::string& path, const std::string& text) {
    errno = 0;
    std::ofstream file(path);
    file << text;
    file.close();
    if (!file) {
        throw std::system_error(errno, std::generic_category(), "cannot write");
    }
}

} // namespace Nerix::ParametersFile
