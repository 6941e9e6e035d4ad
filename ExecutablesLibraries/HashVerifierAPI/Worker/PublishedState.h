#pragma once

#include "Platform/SystemAPI/VconfSystemAPI/IVConf.h"

#include <string>

/// The state that a run publishes in the settings store: three texts, with one function per transition.
///
///     status      "active" while the worker runs, else "inactive"
///     progress    a percentage: "0.0", then with two decimals, "100.0" at the end of a run that succeeded
///     result      "00000111" while a run is under way, then the first 8 of its 16 digits, or "ERROR"
///
/// All functions throw IVConf::VConfException if the store fails. They are thread-safe.
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

/// Publishes that a run has begun. Call this first.
inline void begin() {
    Platform::IVConf::setString(resultKey, runningResult);
}

inline void progress(const std::string& percentage) {
    Platform::IVConf::setString(progressKey, percentage);
}

/// Publishes the status "active".
inline void active() {
    Platform::IVConf::setString(statusKey, activeStatus);
}

/// Publishes the first 8 of the 16 digits as the result, and that progress is complete.
inline void succeeded(const std::string& digits) {
    Platform::IVConf::setString(resultKey, digits.substr(0, 8));
    progress(wholeProgress);
}

/// Publishes message as the result. Leaves progress unchanged.
inline void failed(const std::string& message) {
    Platform::IVConf::setString(resultKey, message);
}

/// Publishes the status "inactive". Call this last.
inline void inactive() {
    Platform::IVConf::setString(statusKey, inactiveStatus);
}

} // namespace Nerix::PublishedState
