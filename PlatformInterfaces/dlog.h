#pragma once

/// The platform's system log.
extern "C" {

/// Buffers of the log; a record goes to exactly one.
enum DlogBuffer { DLOG_BUFFER_MAIN = 0, DLOG_BUFFER_SYSTEM = 2 };

enum DlogPriority {
    DLOG_PRIORITY_VERBOSE = 2,
    DLOG_PRIORITY_DEBUG = 3,
    DLOG_PRIORITY_INFO = 4,
    DLOG_PRIORITY_WARNING = 5,
    DLOG_PRIORITY_ERROR = 6,
    DLOG_PRIORITY_FATAL = 7
};

/// Appends one record, whose text is formatted like that of printf. Returns a negative number if the record
/// could not be written. Thread-safe.
int __dlog_print(int buffer, int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
}
