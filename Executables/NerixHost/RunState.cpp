#include "Executables/NerixHost/RunState.h"

#include "ExecutablesLibraries/HashVerifierAPI/Worker/PublishedState.h"
#include "HostPlatform/HostState.h"
#include "HostPlatform/ProcessIdentity.h"

#include <string_view>

namespace Nerix {

namespace {

using Platform::Host::Setting;

constexpr const char* killed = "killed";

/// Returns the setting of the key, or an empty setting if there is none.
Setting find(std::string_view key) {
    return Platform::Host::HostState::instance().settings().find(key).value_or(Setting{});
}

/// Returns true for the value of the status or result of an active run. The run may also have been killed.
bool isOfUnfinishedRun(const Setting& setting) {
    return setting.type == Platform::Host::SettingType::Text &&
           (setting.bytes == PublishedState::activeStatus || setting.bytes == PublishedState::runningResult);
}

/// Returns true if the setting was left behind by a run whose process is gone.
bool isLeftBehind(const Setting& setting) {
    return isOfUnfinishedRun(setting) && Platform::Host::ProcessIdentity::isGone(setting.writer);
}

bool isOfLiveRun(const Setting& setting) {
    return isOfUnfinishedRun(setting) && !isLeftBehind(setting);
}

RunState readOnce() {
    const Setting status = find(PublishedState::statusKey);
    const Setting progress = find(PublishedState::progressKey);
    const Setting result = find(PublishedState::resultKey);
    RunState state{status.bytes, progress.bytes, result.bytes, result.writer,
                   isOfLiveRun(status) || isOfLiveRun(result)};
    if (!state.isRunning && (isOfUnfinishedRun(status) || isOfUnfinishedRun(result))) {
        state.status = killed;
    }
    return state;
}

} // namespace

bool isOfKilledRun(const Setting& setting) {
    // Reads the setting again, because the run may have published its end and exited in between.
    return isLeftBehind(setting) && isLeftBehind(find(setting.key));
}

RunState RunState::read() {
    const RunState state = readOnce();
    // Reads again, because the run may have published its end and exited between the reads of readOnce.
    return state.status == killed ? readOnce() : state;
}

} // namespace Nerix
