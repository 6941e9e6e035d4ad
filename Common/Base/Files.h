#pragma once

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include <unistd.h>

namespace Nerix::Common {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// Owns a C stream. The deleter ignores errors of fclose, so call fflush after writing and check its result.
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Returns the system's message for an errno value.
inline std::string messageOf(int error) {
    return std::generic_category().message(error);
}

/// Writes all bytes, in as many system calls as necessary. Returns 0, or the errno of the call that failed.
inline int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return 0;
}

} // namespace Nerix::Common
