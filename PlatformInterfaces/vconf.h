#pragma once

/// The platform's settings store: a map from text keys to typed values, shared by all processes.
///
/// Every function except vconf_get_str returns 0 on success and any other value on failure. A failed call
/// changes neither the store nor *value. Keys and texts are NUL-terminated. Thread-safe.
extern "C" {

int vconf_get_int(const char* key, int* value);
int vconf_set_int(const char* key, int value);
int vconf_get_dbl(const char* key, double* value);
int vconf_set_dbl(const char* key, double value);

/// Returns a copy of the text, which the caller must free(), or null on failure.
char* vconf_get_str(const char* key);
int vconf_set_str(const char* key, const char* value);

int vconf_get_bool(const char* key, int* value);
int vconf_set_bool(const char* key, int value);
}
