#pragma once

/// The platform's settings store: a map from text keys to typed values, shared by all processes.
///
/// Every function returns 0 on success and any other value on failure; a failed call changes neither the
/// store nor *value. Keys and texts are NUL-terminated. Any thread may call, at any time.
extern "C" {

int vconf_get_int(const char* key, int* value);
int vconf_set_int(const char* key, int value);
int vconf_get_dbl(const char* key, double* value);
int vconf_set_dbl(const char* key, double value);

/// A copy of the text made with malloc, which the caller frees; null on failure.
char* vconf_get_str(const char* key);
int vconf_set_str(const char* key, const char* value);

int vconf_get_bool(const char* key, int* value);
int vconf_set_bool(const char* key, int value);
}
