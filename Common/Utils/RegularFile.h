#pragma once

#include <boost/filesystem/path.hpp>

#include <fstream>

namespace Nerix::Common::Utils {

/// Opens the file for reading; closed when it cannot be opened, or is no regular file: a pipe would wait for
/// its writer.
std::ifstream openRegularFile(const boost::filesystem::path& path);

} // namespace Nerix::Common::Utils
