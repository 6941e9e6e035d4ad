#include "Executables/NerixHost/RunState.h"

#include "ExecutablesLibraries/HashVerifierAPI/Worker/PublishedState.h"
#include "HostPlatform/HostState.h"
#include "HostPlatform/ProcessIdentity.h"

namespace Nerix {

namespace {

using Platform::Host::Setting;

/// An empty setting if there is none.
Setting find(const char* key) {
    return Platform::Host::HostState::instance().settings().find(key).value_or(Setting{});
}

} // namespace

bool isOfRun(const Setting& setting) {
    return setting.type == Platform::Host::SettingType::Text &&
           (setting.bytes == PublishedState::activeStatus || setting.bytes == PublishedState::runningResult);
}

bool isOfLiveRun(const Setting& setting) {
    return isOfRun(setting) && !Platform::Host::ProcessIdentity::isGone(setting.writer);
}

RunState RunState::read() {
    const Setting status = find(PublishedState::statusKey);
    const Setting progress = find(PublishedState::progressKey);
    const Setting result = find(PublishedState::resultKey);
    RunState state{status.bytes, progress.bytes, result.bytes, result.writer,
                   isOfLiveRun(status) || isOfLiveRun(result)};
    if (!state.isRunning && (isOfRun(status) || isOfRun(result))) {
        state.status = "killed";
    }
    return state;
}

} // namespace Nerix
