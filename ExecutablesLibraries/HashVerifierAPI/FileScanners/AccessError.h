#pragma once

#include "Common/Utils/Errors/Errors.h"

#include <boost/filesystem/path.hpp>

namespace Nerix::FileScanners {

/// A failure to read an entry, with what a person is told of it in entries of their own: what could not be
/// done with it ("examine", "read"), its path, and the errno of the call; 0 when the entry changed meanwhile.
/// The thrower adds the text for the log:
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
