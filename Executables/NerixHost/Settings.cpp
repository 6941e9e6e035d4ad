#include "Executables/NerixHost/Settings.h"

#include "Common/Base/EscapedText.h"
#include "Executables/NerixHost/ErrorMessage.h"
#include "Executables/NerixHost/Json.h"
#include "Executables/NerixHost/RunState.h"
#include "Executables/NerixHost/SettingValue.h"
#include "Executables/NerixHost/Suggestion.h"
#include "Executables/NerixHost/Watch.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/PublishedState.h"
#include "HostPlatform/HostState.h"

#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace Nerix {

namespace {

using Common::escaped;
using Platform::Host::HostState;
using Platform::Host::Setting;
using Platform::Host::SettingsFailure;
using Platform::Host::SettingsListing;

/// Prints a warning if a killed run left the setting behind.
void warnIfKilled(const Setting& setting) {
    if (isOfKilledRun(setting)) {
        printError("the scan that set " + escaped(setting.key) + " was killed");
    }
}

int list(bool isJson) {
    const SettingsListing listing = HostState::instance().settings().list();
    for (const Setting& setting : listing.settings) {
        std::cout << (isJson ? jsonOf(setting) : escaped(setting.key) + " = " + valueText(setting)) << '\n';
        if (!isJson) {
            warnIfKilled(setting);
        }
    }
    std::cout << std::flush;
    if (listing.failure) {
        throw SettingsFailure(*listing.failure);
    }
    return EXIT_SUCCESS;
}

/// Returns the keys that a run publishes and those of all readable settings.
std::vector<std::string> knownKeys() {
    std::vector<std::string> keys{PublishedState::statusKey, PublishedState::progressKey,
                                  PublishedState::resultKey};
    for (const Setting& setting : HostState::instance().settings().list().settings) {
        keys.push_back(setting.key);
    }
    return keys;
}

int get(const std::string& key, bool isJson) {
    if (const std::optional<Setting> setting = HostState::instance().settings().find(key)) {
        std::cout << (isJson ? jsonOf(*setting) : valueText(*setting)) << std::endl;
        warnIfKilled(*setting);
        return EXIT_SUCCESS;
    }
    const std::string other = nearest(key, knownKeys());
    std::string hint;
    if (other == key) {
        hint = " yet";
    } else if (!other.empty()) {
        hint = "; did you mean '" + escaped(other) + "'?";
    }
    printError("there is no setting '" + escaped(key) + '\'' + hint);
    return EXIT_FAILURE;
}

} // namespace

int settings(const SettingsRequest& request) {
    switch (request.action) {
    case SettingsRequest::Action::List:
        return list(request.isJson);
    case SettingsRequest::Action::Get:
        return get(request.key, request.isJson);
    case SettingsRequest::Action::Watch:
        break;
    }
    return watch(request.isJson);
}

} // namespace Nerix
