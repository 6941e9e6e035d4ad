#pragma once

#include <boost/filesystem/path.hpp>

namespace Nerix::FileScanners {

/// Opens the content of a regular file for reading. Returns the descriptor, close-on-exec, which the caller
/// owns. Returns -1 with errno set if the file cannot be opened, or with errno 0 if it is no longer a regular
/// file. Does not follow a final link, and does not wait for the other end of a FIFO.
///
/// Waits only for a file under a lease of another process: like any blocking open it takes its turn in the
/// kernel's queue, so a process that takes the lease again and again cannot keep it out. If the system has no
/// timer left, it looks every 20 ms instead. The wait ends early if the thread's StepObserver wants a stop;
/// it uses the signal SIGRTMAX - 1.
int openContent(const boost::filesystem::path& path);

/// Like openContent, but does not wait: fails with EWOULDBLOCK if another process holds a lease on the file.
int openContentWithoutWaiting(const boost::filesystem::path& path);

} // namespace Nerix::FileScanners
