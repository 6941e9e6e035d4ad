#include "Common/Utils/StandardStreams.h"

#include "Common/Utils/Errors.h"

#include <cerrno>
#include <csignal>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

namespace Nerix::Common::Utils {

namespace {

/// Opens take the lowest free descriptor, so filling from 0 upwards puts each file in its place.
void fillIfClosed(int descriptor, int flags) {
    if (::fcntl(descriptor, F_GETFD) == -1 && errno == EBADF) {
        ::open("/dev/null", flags); // stays open as the standard descriptor
    }
}

bool tryWrite(const std::string& text, int& cause) {
    errno = 0;
    std::cout << text << std::flush;
    cause = errno;
    return std::cout.good();
}

} // namespace

void secureStandardStreams() {
    fillIfClosed(STDIN_FILENO, O_RDONLY);
    fillIfClosed(STDOUT_FILENO, O_RDONLY);
    fillIfClosed(STDERR_FILENO, O_WRONLY);
    std::signal(SIGPIPE, SIG_IGN);
}

void writeToStandardOutput(const std::string& text) {
    int cause = 0;
    if (!tryWrite(text, cause)) {
        BOOST_THROW_EXCEPTION(GenericException() << errinfo_stream("can't write to standard output:",
                                                                   get_string_from_errno(cause)));
    }
}

void writeReport(const std::string& text) noexcept {
    try {
        int cause = 0;
        if (!tryWrite(text, cause)) {
            std::cerr << text << std::flush;
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): there is no place left to report to
    }
}

} // namespace Nerix::Common::Utils
