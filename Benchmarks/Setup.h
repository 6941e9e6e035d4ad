#pragma once

#include <boost/filesystem/path.hpp>

namespace Nerix::Benchmarks {

/// Returns a directory in memory, which is removed at exit and is also the platform's home.
const boost::filesystem::path& scratch();

} // namespace Nerix::Benchmarks
