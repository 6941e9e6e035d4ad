#include "Executables/NerixHostSettings/Watch.h"

#include "Executables/NerixHostSettings/RunState.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/PublishedState.h"
#include "HostPlatform/EscapedText.h"
#include "HostPlatform/SettingsStore.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <stdexcept>
#include <string>

#include <unistd.h>

namespace Nerix {

namespace {

using Platform::Host::escaped;
using Platform::Host::Setting;
using Platform::Host::SettingsResult;
using Platform::Host::SettingsStore;

volatile std::sig_atomic_t interrupted = 0;

void interrupt(int) {
    interrupted = 1;
}

struct Shown {
    std::string status;
    std::string progress;
    std::string result;
    bool isRunning;

    bool operator!=(const Shown& other) const {
        return status != other.status || progress != other.progress || result != other.result;
    }
};

Setting read(const char* key) {
    Setting setting{};
    if (SettingsStore::instance().find(key, setting) == SettingsResult::Failed) {
        throw std::runtime_error(SettingsStore::instance().lastFailure());
    }
    return setting;
}

Shown readAll() {
    const Setting status = read(PublishedState::statusKey);
    const Setting progress = read(PublishedState::progressKey);
    const Setting result = read(PublishedState::resultKey);
    Shown shown{status.bytes, progress.bytes, result.bytes, isOfLiveRun(status) || isOfLiveRun(result)};
    if (!shown.isRunning && (isOfRun(status) || isOfRun(result))) {
        shown.status = "killed";
    }
    return shown;
}

std::string bar(const std::string& progress) {
    constexpr std::size_t width = 40;
    const double percent = std::strtod(progress.c_str(), nullptr);
    const auto done =
        percent > 0 ? static_cast<std::size_t>(std::min(percent, 100.0) * width / 100.0) : 0; // also "nan"
    return "[" + std::string(done, '#') + std::string(width - done, ' ') + "]";
}

void draw(const Shown& shown, bool isTerminal) {
    const std::string padding(shown.progress.size() < 6 ? 6 - shown.progress.size() : 0, ' ');
    std::cout << (isTerminal ? "\r" : "") << (shown.status.empty() ? "no run yet" : escaped(shown.status))
              << ' ' << padding << escaped(shown.progress) << " % " << bar(shown.progress) << ' '
              << escaped(shown.result) << (isTerminal ? "\x1b[K" : "\n") << std::flush;
}

} // namespace

void watch() {
    struct sigaction action {};
    action.sa_handler = &interrupt; // without SA_RESTART: the pause ends at once
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
    const bool isTerminal = ::isatty(STDOUT_FILENO) == 1;

    Shown shown = readAll();
    draw(shown, isTerminal);
    bool hasSeenRun = shown.isRunning;
    while (interrupted == 0 && !(hasSeenRun && !shown.isRunning)) {
        const std::timespec pause{0, 50'000'000};
        ::nanosleep(&pause, nullptr);
        const Shown now = readAll();
        if (now != shown) {
            hasSeenRun = true; // also a run too short to be seen active
            shown = now;
            draw(shown, isTerminal);
        }
    }
    if (isTerminal) {
        std::cout << std::endl;
    }
}

} // namespace Nerix
