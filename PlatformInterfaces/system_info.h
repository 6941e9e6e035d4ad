#pragma once

/// The platform's system-information service: facts about the device under numeric keys.
///
/// Every function returns 0 on success and any other value on failure; *value is then unchanged. Thread-safe.
extern "C" {

/// Sets *value to a copy of the text, which the caller must free().
int system_info_get_value_string(int key, char** value);
int system_info_get_value_int(int key, int* value);
int system_info_get_value_bool(int key, bool* value);
}
