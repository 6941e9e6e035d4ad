#pragma once

#include <boost/filesystem/path.hpp>

namespace Nerix::FileScanners {

/// Opens the content of a regular file for reading. Returns the descriptor, close-on-exec, which the caller
/// owns; -1 with errno set when the file cannot be opened, and with errno 0 when it is no longer a regular
/// file. A final link is not followed, and nothing but a file under a lease makes the call wait: like any
/// blocking open it then takes its turn in the kernel's queue, so a holder that takes the lease again and
/// again cannot keep it out. Where the system has no timer left it looks every 20 ms instead. The wait ends early when the thread's StepObserver wants a stop; it uses the
/// signal SIGRTMAX - 1.
int openContent(const boost::filesystem::path& path);

} // namespace Nerix::FileScanners
