#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogStream.h"

#include <exception>
#include <functional>
#include <string>

namespace Nerix {

/// What a caller can choose for a run, besides root and hash method. The runs that the device's programs
/// start have none of it.
struct RunOptions {
    ScanLogStream scanLog; ///< instead of the drive or the system log

    /// The path under which the tree is hashed and recorded, absolute and without a slash at the end; empty
    /// for the path where it is. An image gets the value of the device on which it will be at this path.
    std::string hashedRoot;

    /// If set, an entry that cannot be read does not end the run. The function gets the failure of each, on
    /// the worker's thread, and must not throw. The run then ends with "ERROR" after it has seen the whole
    /// tree; its records of the directories around such an entry have wrong values.
    std::function<void(const std::exception_ptr&)> onUnreadable;
};

} // namespace Nerix
