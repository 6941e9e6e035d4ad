#pragma once

#include <ostream>
#include <string>

namespace Nerix::Common::Utils {

/// Identifies a service in the SingletonsRegister. The identifiers are shared by all programs of the package.
/// Their numbers appear only in messages and are never stored.
enum SingletonsID : int {
    USER_DATA_REGISTER = 0,
    TVS_SIGNAL_DISTRIBUTOR = 1,
    POWER_OFF_CB_DISTRIBUTOR = 2,
    G_MAIN_LOOP = 3,
    DEBUG_AND_TEST_PARMS = 4,
    INSTALLATION_PERFORMANCE_PARAMS = 5,
    SINGLETON_PANEL_SERVICE = 6,
    SINGLETON_CAMERA_PLUGIN = 7,
    SINGLETON_SUBMICOM_PLUGIN = 8,
    SINGLETON_EXAMPLE_PLUGIN = 9,
    SINGLETON_INDEPENDENT_FIRMWARE_PLUGIN = 10,
    SINGLETON_TVTIMER_INITIALIZER = 11,
    SINGLETON_CSP_INITIALIZER = 12,
    SINGLETON_WAKEUP_ENABLER = 13,
    SINGLETON_USB_DEVICE_INITIALIZER = 14,
    SINGLETON_POWER_API_INITIALIZER = 15,
    SINGLETON_USB_CB_DISTRIBUTOR = 16,
    SINGLETON_USB_NFS_MOUNT = 17,
    SINGLETON_UNIRO_MOUNTER = 18,
    SINGLETON_OPENSSL_INITIALIZER = 19,
    DUMMY_SINGLETON = 20,
    DEPENDENT_DUMMY_SINGLETON = 21
};

/// Returns the name of the enumerator, or an error text for any other value.
std::string singletonsIdToString(SingletonsID id);

std::ostream& operator<<(std::ostream& stream, SingletonsID id);

} // namespace Nerix::Common::Utils
