#include "Executables/NerixHost/Watch.h"

#include "Common/Base/EscapedText.h"
#include "Executables/NerixHost/EndBySignal.h"
#include "Executables/NerixHost/Json.h"
#include "Executables/NerixHost/ProgressLine.h"
#include "Executables/NerixHost/RunState.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/PublishedState.h"

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <string>

#include <unistd.h>

namespace Nerix {

namespace {

using Common::escaped;

volatile std::sig_atomic_t receivedSignal = 0; ///< 0 if there is none

void storeSignal(int signal) {
    receivedSignal = signal;
}

void catchSignals() {
    struct sigaction action {};
    action.sa_handler = &storeSignal; // without SA_RESTART, so that nanosleep returns at once
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}

void sleepBriefly() {
    const std::timespec duration{0, 50'000'000};
    ::nanosleep(&duration, nullptr);
}

bool isSameState(const RunState& a, const RunState& b) {
    return a.status == b.status && a.progress == b.progress && a.result == b.result && a.writer == b.writer;
}

ProgressLine::Content contentOf(const RunState& state) {
    return {escaped(state.status), escaped(state.progress), escaped(state.result)};
}

/// Returns the text to show while waiting for a run, with the outcome of the last one.
ProgressLine::Content contentWhileWaiting(const RunState& last) {
    std::string outcome;
    if (last.status == "killed") {
        outcome = "(the last one was killed)";
    } else if (!last.result.empty()) {
        outcome = "(the last one: " + escaped(last.result) + ")";
    }
    return {"waiting for a scan", "", outcome};
}

/// Shows the state as a progress line or as JSON objects.
class Display {
public:
    explicit Display(bool isJson) : m_isJson(isJson), m_line(STDOUT_FILENO, std::chrono::seconds(1)) {}

    void showWaiting(const RunState& last) {
        if (!m_isJson) {
            m_line.showNow(contentWhileWaiting(last));
        }
    }
    void show(const RunState& state) {
        if (!m_isJson) {
            m_line.show(contentOf(state));
        } else if (std::time(nullptr) != m_lastObject) {
            showNow(state);
        }
    }
    void showNow(const RunState& state) {
        if (!m_isJson) {
            m_line.showNow(contentOf(state));
            return;
        }
        m_lastObject = std::time(nullptr);
        std::cout << jsonOf(state) << std::endl;
    }
    void end() { m_line.end(); }

private:
    const bool m_isJson;
    ProgressLine m_line;
    std::time_t m_lastObject = 0;
};

} // namespace

int watch(bool isJson) {
    catchSignals();
    Display display(isJson);
    const RunState before = RunState::read();
    RunState state = before;
    if (!state.isRunning) {
        display.showWaiting(state);
    }
    // A short run may never be seen as active, so a changed state also ends the wait. A missing
    // result does not: the store was deleted, or there has been no run yet.
    while (receivedSignal == 0 && !state.isRunning && (isSameState(state, before) || state.result.empty())) {
        sleepBriefly();
        state = RunState::read();
    }
    if (state.isRunning) {
        display.showNow(state);
    }
    while (receivedSignal == 0 && state.isRunning) {
        display.show(state);
        sleepBriefly();
        state = RunState::read();
    }
    if (receivedSignal == 0) {
        display.showNow(state);
    }
    display.end();
    if (receivedSignal != 0) {
        endBySignal(receivedSignal);
    }
    const bool hasFailed = state.status == "killed" || state.result == PublishedState::errorResult;
    return hasFailed ? EXIT_FAILURE : EXIT_SUCCESS;
}

} // namespace Nerix
