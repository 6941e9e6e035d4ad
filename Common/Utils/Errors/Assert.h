#pragma once

/// Assertions, active in every build. A failed assertion, ours or one in a Boost header, is reported in the
/// system log and on the system console (on standard error if there is no console). It then aborts the
/// process, without unwinding the stack, even if reporting fails. Assertions inside the distribution's
/// compiled libraries are not affected.
///
///     NerixAssert(excPtr);
///     NerixAssertMsg(lock->try_lock(), "Destroying object when mutex is still locked!");

namespace Nerix::Common::Utils {

/// Reports the failed assertion and aborts. Use the macros below instead. Thread-safe.
[[noreturn]] void NerixAssertionFailed(const char* expression, const char* function, const char* file,
                                       long line);
[[noreturn]] void NerixAssertionFailedMsg(const char* expression, const char* message, const char* function,
                                          const char* file, long line);

} // namespace Nerix::Common::Utils

#define NerixAssert(condition)                                                                               \
    (static_cast<bool>(condition) ? void()                                                                   \
                                  : ::Nerix::Common::Utils::NerixAssertionFailed(                            \
                                        #condition, __PRETTY_FUNCTION__, __FILE__, __LINE__))

#define NerixAssertMsg(condition, message)                                                                   \
    (static_cast<bool>(condition) ? void()                                                                   \
                                  : ::Nerix::Common::Utils::NerixAssertionFailedMsg(                         \
                                        #condition, message, __PRETTY_FUNCTION__, __FILE__, __LINE__))
