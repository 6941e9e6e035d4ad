#include "Common/Utils/StandardStreams.h"

#include "Common/Utils/Errors/Errors.h"

#include <cerrno>
#include <csignal>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

namespace Nerix::Common::Utils {

namespace {

/// Opens /dev/null on the descriptor if it is closed. Returns false on failure. Call it for 0, 1 and 2 in
/// this order, because open returns the lowest free descriptor.
bool fillIfClosed(int descriptor, int flags) {
    const bool isClosed = ::fcntl(descriptor, F_GETFD) == -1 && errno == EBADF;
    return !isClosed || ::open("/dev/null", flags) == descriptor;
}

/// Writes and flushes text. Returns 0, or the errno of the failed write.
int tryWrite(const std::string& text) {
    errno = 0;
    std::cout << text << std::flush;
    if (std::cout.good()) {
        return 0;
    }
    return errno != 0 ? errno : EIO;
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
    if (const int cause = tryWrite(text)) {
        BOOST_THROW_EXCEPTION(GenericException() << errinfo_stream("can't write to standard output:",
                                                                   get_string_from_errno(cause)));
    }
}

void writeReport(const std::string& text) noexcept {
    try {
        if (tryWrite(text) != 0) {
            std::cerr << text << std::flush;
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): there is nowhere else to report it
    }
}

} // namespace Nerix::Common::Utils
