#pragma once

/// The platform's system-information service: facts about the device under numeric keys.
///
/// Every function returns 0 on success and any other value on failure; *value is then unchanged. Nothing is
/// cached. Any thread may call.
extern "C" {

/// *value becomes a copy of the text made with malloc, which the caller frees.
int system_info_get_value_string(int key, char** value);
int system_info_get_value_int(int key, int* value);
int system_info_get_value_bool(int key, bool* value);
}
