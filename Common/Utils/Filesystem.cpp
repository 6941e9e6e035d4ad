#include "Common/Utils/Filesystem.h"

#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Errors/RethrowExceptionStream.h"

#include <boost/filesystem/operations.hpp>
#include <boost/thread/thread.hpp>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <iterator>
#include <utility>

namespace Nerix::Common::Utils::filesystem {

namespace {

/// Returns the first element of path after the prefix, and true if the whole prefix matched.
std::pair<boost::filesystem::path::const_iterator, bool> matchPrefix(const boost::filesystem::path& path,
                                                                     const boost::filesystem::path& prefix) {
    const boost::filesystem::path stripped = stripTrailingSlashes(prefix);
    const auto [inPath, inPrefix] = std::mismatch(path.begin(), path.end(), stripped.begin(), stripped.end());
    return {inPath, inPrefix == stripped.end()};
}

void sleepOneSecond() {
    boost::this_thread::sleep_for(boost::chrono::seconds(1));
}

} // namespace

bool is_unix_absolute(const boost::filesystem::path& p) {
    return !p.empty() && (p.native().front() == '/' || p.native().front() == '\\');
}

boost::filesystem::path stripTrailingSlashes(const boost::filesystem::path& p) {
    // A path with a trailing separator has "." as its last element.
    return p.filename() == "." ? p.parent_path() : p;
}

bool exists_any(const boost::filesystem::path& p) {
    try {
        const boost::filesystem::file_type type = boost::filesystem::symlink_status(p).type();
        return type != boost::filesystem::status_error && type != boost::filesystem::file_not_found;
    } catch (...) {
        NERIX_RETHROW_WITH_CONTEXT("Path: ", p);
    }
}

bool is_directory(const boost::filesystem::path& p) {
    try {
        return boost::filesystem::symlink_status(p).type() == boost::filesystem::directory_file;
    } catch (...) {
        NERIX_RETHROW_WITH_CONTEXT("Path: ", p);
    }
}

bool is_regular_file(const boost::filesystem::path& p) {
    try {
        return boost::filesystem::symlink_status(p).type() == boost::filesystem::regular_file;
    } catch (...) {
        NERIX_RETHROW_WITH_CONTEXT("Path: ", p);
    }
}

bool is_symlink(const boost::filesystem::path& p) {
    try {
        return boost::filesystem::symlink_status(p).type() == boost::filesystem::symlink_file;
    } catch (...) {
        NERIX_RETHROW_WITH_CONTEXT("Path: ", p);
    }
}

std::ifstream openRegularFile(const boost::filesystem::path& p) {
    boost::system::error_code error;
    return boost::filesystem::is_regular_file(p, error) ? std::ifstream(p.c_str()) : std::ifstream();
}

std::ofstream openRegularFileToWrite(const boost::filesystem::path& p) {
    boost::system::error_code error;
    switch (boost::filesystem::status(p, error).type()) {
    case boost::filesystem::regular_file:
    case boost::filesystem::file_not_found:
    case boost::filesystem::status_error: // opening the file then sets errno
        return std::ofstream(p.c_str());
    case boost::filesystem::directory_file:
        errno = EISDIR;
        return {};
    default:
        errno = ENXIO; // as for a FIFO without a reader
        return {};
    }
}

bool remove(const boost::filesystem::path& p) {
    try {
        return boost::filesystem::remove(p);
    } catch (...) {
        NERIX_RETHROW_WITH_CONTEXT("Path: ", p);
    }
}

void rename(const boost::filesystem::path& from, const boost::filesystem::path& to) {
    try {
        boost::filesystem::rename(from, to);
    } catch (...) {
        NERIX_RETHROW_WITH_CONTEXT("Old path: ", from, ", new path: ", to);
    }
}

boost::filesystem::path canonical(const boost::filesystem::path& p, const boost::filesystem::path& base) {
    try {
        return boost::filesystem::canonical(p, base);
    } catch (...) {
        NERIX_RETHROW_WITH_CONTEXT("Path: ", p, ", base: ", base);
    }
}

bool pathStartsWith(const boost::filesystem::path& path, const boost::filesystem::path& prefix) {
    return matchPrefix(path, prefix).second;
}

boost::filesystem::path removePathPrefix(const boost::filesystem::path& path,
                                         const boost::filesystem::path& prefix) {
    const auto [rest, isPrefix] = matchPrefix(path, prefix);
    if (!isPrefix) {
        BOOST_THROW_EXCEPTION(GenericException() << errinfo_stream(
                                  "Path '", path, "' doesn't start with prefix '", prefix, "'."));
    }
    boost::filesystem::path result("/");
    for (auto element = rest; element != path.end(); ++element) {
        // The root is left only if the prefix is empty; the result already begins with it.
        if (*element != "/") {
            result /= *element;
        }
    }
    return result;
}

bool waitForFile(const boost::filesystem::path& p, std::int64_t timeoutSeconds) {
    // About thirty years: long enough for any caller, and it does not overflow the clock's arithmetic.
    constexpr std::int64_t longest = 1'000'000'000;
    const auto deadline = std::chrono::steady_clock::now() +
                          std::chrono::seconds(std::clamp<std::int64_t>(timeoutSeconds, -1, longest));
    while (!exists_any(p)) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        sleepOneSecond();
    }
    return true;
}

bool waitForFile(const boost::filesystem::path& p) {
    while (!exists_any(p)) {
        sleepOneSecond();
    }
    return true;
}

} // namespace Nerix::Common::Utils::filesystem
