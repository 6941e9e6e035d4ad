#pragma once

#include <fstream>

namespace Nerix {

/// Creates the scan log on the USB drive, if one is mounted, named after the local date and time:
/// "NerixVerifierHash-20261122-213000.log". An existing file of that name is truncated, unless another run is
/// still writing it, which is detected if the drive's file system has locks.
///
/// The returned stream is closed if there is no drive or the file cannot be used: it cannot be created,
/// another run is writing it, or it is not a regular file (links are not followed). If the file cannot be
/// used, two warnings are logged: why, and that records go to the system log. Throws ProductUninitializedException before
/// IProductInfo::initializeProduct.
std::fstream openScanLog();

} // namespace Nerix
