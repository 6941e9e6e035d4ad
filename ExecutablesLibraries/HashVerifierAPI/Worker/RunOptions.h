#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogStream.h"

#include <exception>
#include <functional>
#include <string>

namespace Nerix {

/// The options of a run, besides its root and hash method. The device's programs use none of these.
struct RunOptions {
    ScanLogStream scanLog; ///< used instead of a drive; a null stream selects the system log

    /// The path under which the tree is hashed and recorded: absolute and, except "/", without a trailing
    /// slash; empty for the actual path. With it, an image has the value that the tree will have at this path
    /// on the device.
    std::string hashedRoot;

    /// If set, an entry below the root that cannot be read, or a file that cannot be read to its end, does
    /// not end the run. The function is called with each failure, on the worker's thread, and must not throw.
    /// The run continues to the end of the tree and then ends with "ERROR". The values of such files and of
    /// the directories that contain such entries are wrong in the records.
    std::function<void(const std::exception_ptr&)> onUnreadable;
};

} // namespace Nerix
