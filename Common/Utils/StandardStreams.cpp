#include "Common/Utils/StandardStreams.h"

#include "Common/Utils/Errors/Errors.h"

#include <cerrno>
#include <csignal>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

namespace Nerix::Common::Utils {

namespace {

/// Opens take the lowest free descriptor, so filling from 0 upwards puts each file in its place,
/// where it stays.
bool fillIfClosed(int descriptor, int flags) {
    const bool isClosed = ::fcntl(descriptor, F_GETFD) == -1 && errno == EBADF;
    return !isClosed || ::open("/dev/null", flags) == descriptor;
}

bool tryWrite(const std::string& text, int& cause) {
    errno = 0;
    std::cout << text << std::flush;
    cause = errno;
    return std::cout.good();
}

} // namespace

bool secureStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    if (fillIfClosed(STDIN_FILENO, O_RDONLY) && fillIfClosed(STDOUT_FILENO, O_RDONLY) &&
        fillIfClosed(STDERR_FILENO, O_WRONLY)) {
        return true;
    }
    std::cerr << "cannot open /dev/null in place of a standard stream that is closed:"
              << get_string_from_errno(errno) << std::endl;
    return false;
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
