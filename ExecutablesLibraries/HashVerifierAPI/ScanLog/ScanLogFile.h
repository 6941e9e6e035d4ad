#pragma once

#include <fstream>

namespace Nerix {

/// The scan log of a run that starts now, on the USB drive when one is mounted, under the local date and
/// time: "NerixVerifierHash-20261122-213000.log". An older file of that name is truncated, unless a run still
/// writes it, which a lock tells where the drive's file system has locks.
///
/// The result is closed when there is no drive, or, with warnings in the system log that say why, when the
/// file cannot be used: it cannot be created, another run writes it, or what stands in its place is no
/// regular file (a link is not followed). Records then go to the system log. Throws
/// ProductUninitializedException before IProductInfo::initializeProduct.
std::fstream openScanLog();

} // namespace Nerix
