#include "ExecutablesLibraries/HashVerifierAPI/Worker/PublishedState.h"

#include "Platform/SystemAPI/VconfSystemAPI/IVConf.h"

namespace Nerix::PublishedState {

using Platform::IVConf;

void begin() {
    IVConf::setString(resultKey, runningResult);
}

void progress(const std::string& percentage) {
    IVConf::setString(progressKey, percentage);
}

void active() {
    IVConf::setString(statusKey, activeStatus);
}

void succeeded(const std::string& digits) {
    IVConf::setString(resultKey, digits.substr(0, 8));
    progress(wholeProgress);
}

void failed(const std::string& message) {
    IVConf::setString(resultKey, message);
}

void inactive() {
    IVConf::setString(statusKey, inactiveStatus);
}

} // namespace Nerix::PublishedState
