#pragma once

#include "Common/Utils/Errors/Errors.h"

#include <boost/filesystem/path.hpp>

namespace Nerix::FileScanners {

/// Returns the exception for an entry that cannot be read. It carries, as separate error information for
/// user-facing messages, the operation in `what` ("examine", "read"), the path, and the errno (0 if the entry
/// changed during the scan). The caller adds the log text:
///
///     BOOST_THROW_EXCEPTION(accessError("read", path, errno) << errinfo_stream("access error: …", path));
inline Common::Utils::GenericException accessError(const char* what, const boost::filesystem::path& path,
                                                   int error) {
    Common::Utils::GenericException failure;
    failure << Common::Utils::errinfo_description(what) << Common::Utils::errinfo_path(path)
            << Common::Utils::errinfo_errorcode(error);
    return failure;
}

} // namespace Nerix::FileScanners
