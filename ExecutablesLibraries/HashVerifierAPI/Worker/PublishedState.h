#pragma once

#include "Platform/SystemAPI/VconfSystemAPI/IVConf.h"

#include <string>

/// What a run tells the rest of the device by way of the settings store: three texts, and the moments at
/// which they change.
///
///     status      "active" while the worker runs, else "inactive"
///     progress    a percentage: "0.0", then with two decimals, "100.0" at the end of a run that succeeded
///     result      "00000111" while a run is under way, then the first 8 of its 16 digits, or "ERROR"
///
/// All functions throw IVConf::VConfException when the store refuses. Any thread may call.
namespace Nerix::PublishedState {

constexpr const char* statusKey = "memory/menu/support/softwareupdate/hashverifier_status";
constexpr const char* progressKey = "memory/menu/support/softwareupdate/hashverifier_progress";
constexpr const char* resultKey = "db/menu/support/softwareupdate/hashverifier_result";

constexpr const char* activeStatus = "active";
constexpr const char* inactiveStatus = "inactive";
constexpr const char* runningResult = "00000111";
constexpr const char* errorResult = "ERROR";
constexpr const char* noProgress = "0.0";
constexpr const char* wholeProgress = "100.0";

/// A run is under way. Called before anything else.
inline void begin() {
    Platform::IVConf::setString(resultKey, runningResult);
}

inline void progress(const std::string& percentage) {
    Platform::IVConf::setString(progressKey, percentage);
}

/// The worker runs.
inline void active() {
    Platform::IVConf::setString(statusKey, activeStatus);
}

/// digits: all 16, of which the first 8 are published.
inline void succeeded(const std::string& digits) {
    Platform::IVConf::setString(resultKey, digits.substr(0, 8));
    progress(wholeProgress);
}

/// Progress keeps its value.
inline void failed(const std::string& message) {
    Platform::IVConf::setString(resultKey, message);
}

/// The worker has ended: the last thing that a run publishes.
inline void inactive() {
    Platform::IVConf::setString(statusKey, inactiveStatus);
}

} // namespace Nerix::PublishedState
