#pragma once

namespace Nerix::Tests {

/// The platform's numbers of facts. The product has its own table of them.
struct SystemInfoKey {
    enum { softwareDate = 8, tvSoftware = 128, submicomVersion = 133, screenLines = 203 };
    enum { partitionList = 301, isTV = 358, isZebBox = 359, zebBoxSoftware = 378 };
};

/// The platform's numbers of directories. The product has its own table of them.
struct PathVariable {
    enum { systemBinaries = 6, readOnlyApps = 20, sharedData = 25, apps = 31, usbDrives = 43 };
};

} // namespace Nerix::Tests
