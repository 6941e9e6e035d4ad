#include "ExecutablesLibraries/HashVerifierAPI/Mounts/MountPoints.h"
#include "Platform/Product/IProductInfo.h"
#include "Tests/Fakes/FakePlatform.h"

#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const bool isReady = [] {
        Nerix::Tests::FakePlatform::instance().pathVariables[43] = "/media/usb";
        Nerix::Platform::IProductInfo::initializeProduct(Nerix::Platform::TV_PRODUCT);
        return true;
    }();
    static_cast<void>(isReady);
    const Nerix::MountPoints mounts(
        std::istringstream(std::string(reinterpret_cast<const char*>(data), size)));
    const std::string usb = mounts.findUSB();
    if (!usb.empty() && !mounts.isMountPoint(usb)) {
        __builtin_trap();
    }
    return 0;
}
