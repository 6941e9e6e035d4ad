#pragma once

#include <boost/filesystem/path.hpp>

namespace Nerix::Benchmarks {

/// A directory in memory that lives as long as the process; also the platform's home.
const boost::filesystem::path& scratch();

} // namespace Nerix::Benchmarks
