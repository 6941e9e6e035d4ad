#pragma once

/// The platform's numbers of facts and directories. The product has its own tables of them.
namespace Nerix::Tests {

enum SoftwareKey { SOFTWARE_DATE = 8, TV_SOFTWARE = 128, SUBMICOM_VERSION = 133, ZEB_BOX_SOFTWARE = 378 };
enum DeviceKey { SCREEN_LINES = 203, PARTITION_LIST = 301, IS_TV = 358, IS_ZEB_BOX = 359 };
enum PathVariable { SYSTEM_BINARIES = 6, READ_ONLY_APPS = 20, SHARED_DATA = 25, APPS = 31, USB_DRIVES = 43 };

} // namespace Nerix::Tests
