#include "Common/Utils/RegularFile.h"

#include <boost/filesystem/operations.hpp>

namespace Nerix::Common::Utils {

std::ifstream openRegularFile(const boost::filesystem::path& path) {
    boost::system::error_code error;
    return boost::filesystem::is_regular_file(path, error) ? std::ifstream(path.c_str()) : std::ifstream();
}

} // namespace Nerix::Common::Utils
