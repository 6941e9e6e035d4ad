#pragma once

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

/// The result becomes that of a run under way. Called before anything else.
void begin();

void progress(const std::string& percentage);

/// The status becomes that of a running worker.
void active();

/// Publishes the first 8 digits, then the whole progress.
void succeeded(const std::string& digits);

/// The result becomes message; progress keeps its value.
void failed(const std::string& message);

/// The status becomes that of no worker: the last thing that a run publishes.
void inactive();

} // namespace Nerix::PublishedState
