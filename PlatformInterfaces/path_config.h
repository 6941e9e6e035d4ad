#pragma once

/// The platform's path configuration: directories under numeric variable ids.
extern "C" {

/// Returns the directory, or null if the platform has none for this variable. The string is valid until the
/// process ends. Thread-safe.
const char* path_config_get(int variable);
}
