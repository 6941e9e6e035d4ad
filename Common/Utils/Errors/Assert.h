#pragma once

/// Assertions, active in every build. A failed one, ours or one in a header of Boost, is reported on the
/// system console, or standard error when there is none, and in the system log, and aborts the process: the
/// stack is not unwound, and the process aborts even if reporting fails. What the distribution's compiled
/// libraries assert inside was decided when they were built.
///
///     NerixAssert(excPtr);
///     NerixAssertMsg(lock->try_lock(), "Destroying object when mutex is still locked!");

namespace Nerix::Common::Utils {

/// Report and abort; what the macros below call. Any thread may call.
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
