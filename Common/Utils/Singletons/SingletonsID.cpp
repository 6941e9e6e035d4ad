#include "Common/Utils/Singletons/SingletonsID.h"

#include <algorithm>
#include <iterator>

namespace Nerix::Common::Utils {

std::string singletonsIdToString(SingletonsID id) {
    // constexpr, because the register uses the names while global objects are destroyed.
    static constexpr struct {
        SingletonsID id;
        const char* text;
    } names[] = {
        {USER_DATA_REGISTER, "USER_DATA_REGISTER"},
        {TVS_SIGNAL_DISTRIBUTOR, "TVS_SIGNAL_DISTRIBUTOR"},
        {POWER_OFF_CB_DISTRIBUTOR, "POWER_OFF_CB_DISTRIBUTOR"},
        {G_MAIN_LOOP, "G_MAIN_LOOP"},
        {DEBUG_AND_TEST_PARMS, "DEBUG_AND_TEST_PARMS"},
        {INSTALLATION_PERFORMANCE_PARAMS, "INSTALLATION_PERFORMANCE_PARAMS"},
        {SINGLETON_PANEL_SERVICE, "SINGLETON_PANEL_SERVICE"},
        {SINGLETON_CAMERA_PLUGIN, "SINGLETON_CAMERA_PLUGIN"},
        {SINGLETON_SUBMICOM_PLUGIN, "SINGLETON_SUBMICOM_PLUGIN"},
        {SINGLETON_EXAMPLE_PLUGIN, "SINGLETON_EXAMPLE_PLUGIN"},
        {SINGLETON_INDEPENDENT_FIRMWARE_PLUGIN, "SINGLETON_INDEPENDENT_FIRMWARE_PLUGIN"},
        {SINGLETON_TVTIMER_INITIALIZER, "SINGLETON_TVTIMER_INITIALIZER"},
        {SINGLETON_CSP_INITIALIZER, "SINGLETON_CSP_INITIALIZER"},
        {SINGLETON_WAKEUP_ENABLER, "SINGLETON_WAKEUP_ENABLER"},
        {SINGLETON_USB_DEVICE_INITIALIZER, "SINGLETON_USB_DEVICE_INITIALIZER"},
        {SINGLETON_POWER_API_INITIALIZER, "SINGLETON_POWER_API_INITIALIZER"},
        {SINGLETON_USB_CB_DISTRIBUTOR, "SINGLETON_USB_CB_DISTRIBUTOR"},
        {SINGLETON_USB_NFS_MOUNT, "SINGLETON_USB_NFS_MOUNT"},
        {SINGLETON_UNIRO_MOUNTER, "SINGLETON_UNIRO_MOUNTER"},
        {SINGLETON_OPENSSL_INITIALIZER, "SINGLETON_OPENSSL_INITIALIZER"},
        {DUMMY_SINGLETON, "DUMMY_SINGLETON"},
        {DEPENDENT_DUMMY_SINGLETON, "DEPENDENT_DUMMY_SINGLETON"},
    };
    const auto* const name =
        std::find_if(std::begin(names), std::end(names), [&](const auto& known) { return known.id == id; });
    return name != std::end(names)
               ? name->text
               : "Error: singleton identifier not recognized (" + std::to_string(id) + ")";
}

std::ostream& operator<<(std::ostream& stream, SingletonsID id) {
    return stream << singletonsIdToString(id);
}

} // namespace Nerix::Common::Utils
