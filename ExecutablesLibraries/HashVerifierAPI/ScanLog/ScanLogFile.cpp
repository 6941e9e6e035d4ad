#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogFile.h"

#include "Common/Base/Descriptor.h"
#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Errors.h"
#include "ExecutablesLibraries/HashVerifierAPI/Mounts/MountPoints.h"

#include <boost/exception/diagnostic_information.hpp>

#include <cerrno>
#include <ctime>
#include <ext/stdio_filebuf.h>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace Nerix {

namespace {

constexpr const char* fallbackName = "/NerixVerifierHash.log";

std::string fileName() {
    const std::time_t now = std::time(nullptr);
    if (now < 0) {
        NERIX_LOG_STREAM(WRN) << "Cannot get system time.";
        return fallbackName;
    }
    std::tm local{};
    if (::localtime_r(&now, &local) == nullptr) {
        NERIX_LOG_STREAM(WRN) << "Cannot get local time.";
        return fallbackName;
    }
    char name[64];
    std::strftime(name, sizeof name, "/NerixVerifierHash-%Y%m%d-%H%M%S.log", &local);
    return name;
}

[[noreturn]] void throwUnusable(const std::string& path, const std::string& reason) {
    BOOST_THROW_EXCEPTION(Common::Utils::GenericException() << Common::Utils::errinfo_stream(path, reason));
}

[[noreturn]] void throwForErrno(const std::string& path, const char* call) {
    throwUnusable(path, std::string(": ") + call + Common::Utils::get_string_from_errno(errno));
}

/// Creates the file or empties it, and locks it against other runs while it is open. The drive's content is
/// not trusted and the name is predictable: it may be a link to one of the device's files, a FIFO without a
/// reader, or a device that reacts to being opened.
std::fstream create(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        throwUnusable(path, " is not a regular file");
    }
    Common::Descriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666));
    if (!file.isOpen()) {
        throwForErrno(path, "open");
    }
    if (::fstat(file.number(), &status) != 0) {
        throwForErrno(path, "fstat");
    }
    if (!S_ISREG(status.st_mode)) {
        throwUnusable(path, " is not a regular file");
    }
    // Truncate only after locking: O_TRUNC would delete the records of another run that started in the same
    // second. If the file system has no locks, the file is written without one.
    if (::flock(file.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        throwUnusable(path, " is the scan log of another run");
    }
    if (::ftruncate(file.number(), 0) != 0) {
        throwForErrno(path, "ftruncate");
    }
    // std::fstream cannot adopt a descriptor; libstdc++'s stdio_filebuf can.
    __gnu_cxx::stdio_filebuf<char> buffer(file.number(), std::ios_base::out);
    if (!buffer.is_open()) {
        throwForErrno(path, "fdopen");
    }
    file.release();
    std::fstream stream;
    *stream.rdbuf() = std::move(buffer);
    return stream;
}

} // namespace

std::fstream openScanLog() {
    const std::string usb = MountPoints::getInstance().findUSB();
    if (usb.empty()) {
        return {};
    }
    const std::string path = usb + fileName();
    NERIX_LOG(INF, "Detected USB drive '%s'. Create log file: %s", usb.c_str(), path.c_str());
    try {
        return create(path);
    } catch (const Common::Utils::GenericException&) {
        NERIX_LOG_STREAM(WRN) << boost::current_exception_diagnostic_information(true);
        NERIX_LOG(WRN, "Can't write to USB drive '%s'... using DLOG.", usb.c_str());
        return {};
    }
}

} // namespace Nerix
