#include "Executables/NerixHostSettings/RunState.h"

#include "ExecutablesLibraries/HashVerifierAPI/Worker/PublishedState.h"
#include "HostPlatform/ProcessIdentity.h"

namespace Nerix {

bool isOfRun(const Platform::Host::Setting& setting) {
    return setting.type == Platform::Host::SettingType::Text &&
           (setting.bytes == PublishedState::activeStatus || setting.bytes == PublishedState::runningResult);
}

bool isOfLiveRun(const Platform::Host::Setting& setting) {
    return isOfRun(setting) && !Platform::Host::ProcessIdentity::isGone(setting.writer);
}

} // namespace Nerix
