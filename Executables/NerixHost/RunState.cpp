#include "Executables/NerixHost/RunState.h"

#include "ExecutablesLibraries/HashVerifierAPI/Worker/PublishedState.h"
#include "HostPlatform/HostState.h"
#include "HostPlatform/ProcessIdentity.h"

namespace Nerix {

namespace {

using Platform::Host::Setting;

constexpr const char* killed = "killed";

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

bool isOfKilledRun(const Setting& setting) {
    if (!isOfRun(setting) || isOfLiveRun(setting)) {
        return false;
    }
    // The run may have published its end after the setting was read. What a process left that is gone stays.
    const Setting now = find(setting.key.c_str());
    return isOfRun(now) && !isOfLiveRun(now);
}

namespace {

RunState readOnce() {
    const Setting status = find(PublishedState::statusKey);
    const Setting progress = find(PublishedState::progressKey);
    const Setting result = find(PublishedState::resultKey);
    RunState state{status.bytes, progress.bytes, result.bytes, result.writer,
                   isOfLiveRun(status) || isOfLiveRun(result)};
    if (!state.isRunning && (isOfRun(status) || isOfRun(result))) {
        state.status = killed;
    }
    return state;
}

} // namespace

RunState RunState::read() {
    const RunState state = readOnce();
    // As in isOfKilledRun: the run may have published its end meanwhile.
    return state.status == killed ? readOnce() : state;
}

} // namespace Nerix
