#pragma once

/// The platform's path configuration: directories under numeric variable ids.
extern "C" {

/// The directory, or null when the platform has none for this variable. The text lives until the process
/// ends. Any thread may call.
const char* path_config_get(int variable);
}
