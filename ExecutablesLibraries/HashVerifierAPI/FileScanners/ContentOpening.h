#pragma once

#include <boost/filesystem/path.hpp>

namespace Nerix::FileScanners {

/// Opens the content of a regular file for reading. Returns the descriptor, close-on-exec, which the caller
/// owns. Returns -1 with errno set if the file cannot be opened; errno is 0 if openContent had to wait for a
/// lease and the file is no longer regular. Otherwise does not check the kind of the file; Content does. Does
/// not follow a final link, and does not wait for the other end of a FIFO. Nor do reads of the file wait: if
/// one would, as in /proc/kmsg, it fails.
///
/// Waits only if another process holds a lease on the file. The open then has a place in the kernel's queue,
/// so a process that keeps renewing its lease cannot block it forever. If no timer can be created,
/// openContent polls every 20 ms instead. If the thread's StepObserver requests a stop, the wait ends and -1
/// is returned. Uses the signal SIGRTMAX - 1.
int openContent(const boost::filesystem::path& path);

/// Like openContent, but does not wait: fails with EWOULDBLOCK if another process holds a lease on the file.
int openContentWithoutWaiting(const boost::filesystem::path& path);

} // namespace Nerix::FileScanners
