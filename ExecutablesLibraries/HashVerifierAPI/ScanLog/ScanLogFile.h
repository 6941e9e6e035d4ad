#pragma once

#include <fstream>

namespace Nerix {

/// Opens the scan log of a run that starts now on the USB drive, when one is mounted, under the local date
/// and time: "NerixVerifierHash-20261122-213000.log". An older file of that name is truncated. The file stays
/// closed when there is no drive, or, with a warning in the system log, when it cannot be created; records
/// then go to the system log. Throws ProductUninitializedException before
/// IProductInfo::initializeProduct.
void openScanLog(std::fstream& file);

} // namespace Nerix
