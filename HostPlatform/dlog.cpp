#include "PlatformInterfaces/dlog.h"

#include "HostPlatform/HostState.h"
#include "HostPlatform/SystemLog.h"
#include "HostPlatform/WithoutExceptions.h"

#include <cstdarg>
#include <cstdio>
#include <string>

namespace {

std::string formatted(const char* format, std::va_list arguments) __attribute__((format(printf, 1, 0)));

std::string formatted(const char* format, std::va_list arguments) {
    std::va_list copy;
    va_copy(copy, arguments);
    char buffer[1024]; // enough for nearly every record
    const int length = std::vsnprintf(buffer, sizeof buffer, format, arguments);
    std::string text = format; // logged if formatting fails, to identify the record
    if (length >= 0 && static_cast<std::size_t>(length) < sizeof buffer) {
        text.assign(buffer, static_cast<std::size_t>(length));
    } else if (length >= 0) {
        text.resize(static_cast<std::size_t>(length));
        std::vsnprintf(text.data(), text.size() + 1, format, copy);
    }
    va_end(copy);
    return text;
}

} // namespace

int __dlog_print(int buffer, int priority, const char* tag, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    int result = -1;
    Nerix::Platform::Host::withoutExceptions([&] {
        const std::string text = formatted(format, arguments);
        if (Nerix::Platform::Host::HostState::instance().log().write(buffer, priority, tag, text)) {
            result = static_cast<int>(text.size());
        }
        return 0;
    });
    va_end(arguments);
    return result;
}
