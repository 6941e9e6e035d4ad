#include "Common/Utils/StandardStreams.h"
#include "Executables/NerixHostSettings/RunState.h"
#include "Executables/NerixHostSettings/Watch.h"
#include "HostPlatform/EscapedText.h"
#include "HostPlatform/SettingsStore.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

using Nerix::Platform::Host::escaped;
using Nerix::Platform::Host::Setting;
using Nerix::Platform::Host::SettingsResult;
using Nerix::Platform::Host::SettingsStore;
using Nerix::Platform::Host::SettingType;

namespace {

constexpr const char* usage = "usage: NerixHostSettings list\n"
                              "       NerixHostSettings get KEY\n"
                              "       NerixHostSettings watch\n";

template <class Value>
Value numberIn(const std::string& bytes) {
    Value value{};
    std::memcpy(&value, bytes.data(), std::min(sizeof value, bytes.size()));
    return value;
}

/// The shortest text that reads back as the same number.
std::string shortest(double value) {
    char text[32];
    return {text, std::to_chars(std::begin(text), std::end(text), value).ptr};
}

std::string valueText(const Setting& setting) {
    switch (setting.type) {
    case SettingType::Integer:
        return std::to_string(numberIn<int>(setting.bytes));
    case SettingType::Double:
        return shortest(numberIn<double>(setting.bytes));
    case SettingType::Boolean:
        return numberIn<int>(setting.bytes) != 0 ? "true" : "false";
    case SettingType::Text:
        break;
    }
    return escaped(setting.bytes);
}

/// A run that was killed leaves its status and result behind.
void tellIfKilled(const Setting& setting) {
    if (Nerix::isOfRun(setting) && !Nerix::isOfLiveRun(setting)) {
        std::cerr << "NerixHostSettings: the run that set " << escaped(setting.key) << " was killed\n";
    }
}

std::vector<Setting> allSettings() {
    std::vector<Setting> settings;
    if (SettingsStore::instance().list(settings) != SettingsResult::Ok) {
        throw std::runtime_error(SettingsStore::instance().lastFailure());
    }
    return settings;
}

int list() {
    for (const Setting& setting : allSettings()) {
        std::cout << escaped(setting.key) << " = " << valueText(setting) << '\n';
        tellIfKilled(setting);
    }
    std::cout << std::flush;
    return EXIT_SUCCESS;
}

int get(const std::string& key) {
    for (const Setting& setting : allSettings()) {
        if (setting.key == key) {
            std::cout << valueText(setting) << std::endl;
            tellIfKilled(setting);
            return EXIT_SUCCESS;
        }
    }
    std::cerr << "NerixHostSettings: no setting '" << escaped(key) << "' in the settings store\n";
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char* argv[]) {
    if (!Nerix::Common::Utils::secureStandardStreams()) {
        return EXIT_FAILURE;
    }
    const std::vector<std::string> words(argv + 1, argv + argc);
    std::cout.exceptions(std::ios_base::badbit | std::ios_base::failbit); // lost output is a failure
    try {
        if (words.size() == 1 && words[0] == "list") {
            return list();
        }
        if (words.size() == 2 && words[0] == "get") {
            return get(words[1]);
        }
        if (words.size() == 1 && words[0] == "watch") {
            Nerix::watch();
            return EXIT_SUCCESS;
        }
    } catch (const std::ios_base::failure&) {
        // The flush at exit must not throw: nobody would catch it.
        std::cout.exceptions(std::ios_base::goodbit);
        std::cerr << "NerixHostSettings: cannot write to standard output\n";
        return EXIT_FAILURE;
    } catch (const std::exception& failure) {
        std::cerr << "NerixHostSettings: " << failure.what() << '\n';
        return EXIT_FAILURE;
    }
    std::cerr << usage;
    return EXIT_FAILURE;
}
