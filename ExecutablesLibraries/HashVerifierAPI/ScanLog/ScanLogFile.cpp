#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogFile.h"

#include "Common/Logging/Log.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/MountPoints.h"

#include <ctime>
#include <string>

namespace Nerix {

namespace {

constexpr const char* timelessName = "/NerixVerifierHash.log";

std::string fileName() {
    const std::time_t now = std::time(nullptr);
    if (now < 0) {
        NERIX_LOG_STREAM(WRN) << "Cannot get system time.";
        return timelessName;
    }
    std::tm local{};
    if (::localtime_r(&now, &local) == nullptr) {
        NERIX_LOG_STREAM(WRN) << "Cannot get local time.";
        return timelessName;
    }
    char name[64];
    std::strftime(name, sizeof name, "/NerixVerifierHash-%Y%m%d-%H%M%S.log", &local);
    return name;
}

} // namespace

void openScanLog(std::fstream& file) {
    if (file.is_open()) {
        file.close(); // opening an open file fails without a sign, and its records would be lost
    }
    const std::string usb = MountPoints::getInstance().findUSB();
    if (usb.empty()) {
        return;
    }
    const std::string path = usb + fileName();
    NERIX_LOG(INF, "Detected USB drive '%s'. Create log file: %s", usb.c_str(), path.c_str());
    file.clear(); // the failures of a former run's file
    file.open(path, std::ios_base::out);
    if (!file.is_open()) {
        NERIX_LOG(WRN, "Can't write to USB drive '%s'... using DLOG.", usb.c_str());
    }
}

} // namespace Nerix
