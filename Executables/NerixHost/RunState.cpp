#include "Executables/NerixHost/RunState.h"

#include "ExecutablesLibraries/HashVerifierAPI/Worker/PublishedState.h"
#include "HostPlatform/ProcessIdentity.h"

#include <stdexcept>

namespace Nerix {

namespace {

using Platform::Host::Setting;
using Platform::Host::SettingsResult;
using Platform::Host::SettingsStore;

Setting find(const char* key) {
    Setting setting{};
    if (SettingsStore::instance().find(key, setting) == SettingsResult::Failed) {
        throw std::runtime_error(SettingsStore::instance().lastFailure());
    }
    return setting;
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
