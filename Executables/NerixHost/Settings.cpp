#include "Executables/NerixHost/Settings.h"

#include "Executables/NerixHost/ErrorMessage.h"
#include "Executables/NerixHost/Json.h"
#include "Executables/NerixHost/RunState.h"
#include "Executables/NerixHost/SettingValue.h"
#include "Executables/NerixHost/Watch.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/PublishedState.h"
#include "HostPlatform/EscapedText.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

namespace Nerix {

namespace {

using Platform::Host::escaped;
using Platform::Host::Setting;
using Platform::Host::SettingsResult;
using Platform::Host::SettingsStore;

/// A run that was killed leaves its status and result behind.
void tellIfKilled(const Setting& setting) {
    if (isOfRun(setting) && !isOfLiveRun(setting)) {
        printError("the run that set " + escaped(setting.key) + " was killed");
    }
}

std::vector<Setting> allSettings() {
    std::vector<Setting> settings;
    if (SettingsStore::instance().list(settings) != SettingsResult::Ok) {
        throw std::runtime_error(SettingsStore::instance().lastFailure());
    }
    return settings;
}

int list(bool isJson) {
    for (const Setting& setting : allSettings()) {
        std::cout << (isJson ? jsonOf(setting) : escaped(setting.key) + " = " + valueText(setting)) << '\n';
        if (!isJson) {
            tellIfKilled(setting);
        }
    }
    std::cout << std::flush;
    return EXIT_SUCCESS;
}

/// How many characters have to be replaced, added or taken away to make one text of the other.
std::size_t distance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

/// Of the keys that are there or that a run publishes, the one that is most like key; one that contains it is
/// more like it than any other. Empty when none is alike: more than a third of its characters differ.
std::string nearest(const std::string& key, const std::vector<Setting>& settings) {
    std::vector<std::string> keys{PublishedState::statusKey, PublishedState::progressKey,
                                  PublishedState::resultKey};
    for (const Setting& setting : settings) {
        keys.push_back(setting.key);
    }
    const auto unlikeness = [&](const std::string& known) {
        return known.find(key) != std::string::npos ? 0 : distance(key, known);
    };
    const std::string other =
        *std::min_element(keys.begin(), keys.end(), [&](const std::string& a, const std::string& b) {
            return unlikeness(a) < unlikeness(b);
        });
    return 3 * unlikeness(other) <= other.size() ? other : "";
}

int get(const std::string& key, bool isJson) {
    Setting setting{};
    const SettingsResult result = SettingsStore::instance().find(key, setting);
    if (result == SettingsResult::Failed) {
        throw std::runtime_error(SettingsStore::instance().lastFailure());
    }
    if (result == SettingsResult::Ok) {
        std::cout << (isJson ? jsonOf(setting) : valueText(setting)) << std::endl;
        tellIfKilled(setting);
        return EXIT_SUCCESS;
    }
    const std::string other = nearest(key, allSettings());
    const std::string hint = other.empty()  ? ""
                             : other == key ? " yet"
                                            : "; did you mean '" + escaped(other) + "'?";
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
