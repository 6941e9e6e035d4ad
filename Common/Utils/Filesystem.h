#pragma once

#include <boost/filesystem/path.hpp>

#include <cstdint>
#include <fstream>

/// Wraps functions of Boost.Filesystem. Queries examine the entry itself and never follow a final link, so
/// exists_any returns true for a dangling link. Prefixes match whole path elements.
///
/// Unless stated otherwise, a function that fails throws boost::filesystem::filesystem_error and logs its own
/// name and the path. For a query, a missing entry is not a failure, but an unsearchable directory is.
/// Thread-safe.
namespace Nerix::Common::Utils::filesystem {

/// Returns true if p begins with '/' or '\'. Does not access the file system.
bool is_unix_absolute(const boost::filesystem::path& p);

/// Returns p without trailing separators and without a final "." element. Does not change "/".
boost::filesystem::path stripTrailingSlashes(const boost::filesystem::path& p);

/// Returns true if an entry of any type exists, even a dangling link.
bool exists_any(const boost::filesystem::path& p);

/// Returns true if the entry is a directory, false if it is a link to one.
bool is_directory(const boost::filesystem::path& p);

/// Returns true if the entry is a regular file, false if it is a link to one.
bool is_regular_file(const boost::filesystem::path& p);

/// Opens the file for reading, following links. Does not throw: returns a closed stream if that fails or the
/// file is not regular (opening a FIFO would block).
std::ifstream openRegularFile(const boost::filesystem::path& p);

/// Opens the file for writing, following links, and creates or truncates it. Does not throw: returns a closed
/// stream, with errno set, if that fails or the name exists and is not a regular file.
std::ofstream openRegularFileToWrite(const boost::filesystem::path& p);

/// Returns true if the entry is a symbolic link.
bool is_symlink(const boost::filesystem::path& p);

/// Removes a file or an empty directory. Returns false if there was none.
bool remove(const boost::filesystem::path& p);

/// Renames `from` to `to`, atomically replacing any file there. Both must be on the same file system.
void rename(const boost::filesystem::path& from, const boost::filesystem::path& to);

/// Returns the absolute path without links, "." and ".."; p may be relative to base. The entry must exist.
boost::filesystem::path canonical(const boost::filesystem::path& p, const boost::filesystem::path& base);

/// Returns true if the elements of prefix are the first elements of path. Ignores trailing separators of
/// prefix. Every path starts with an empty prefix.
bool pathStartsWith(const boost::filesystem::path& path, const boost::filesystem::path& prefix);

/// Returns path without the elements of prefix, as an absolute path; "/" if nothing is left. With an empty
/// prefix, returns an absolute path unchanged. If path does not start with prefix, throws GenericException
/// with a stream entry.
boost::filesystem::path removePathPrefix(const boost::filesystem::path& path,
                                         const boost::filesystem::path& prefix);

/// Waits until the entry exists, and returns true, or until timeoutSeconds have passed, and returns false.
/// Checks once a second, and at least once. The wait is an interruption point.
bool waitForFile(const boost::filesystem::path& p, std::int64_t timeoutSeconds);

/// Waits until the entry exists, without a timeout; always returns true.
bool waitForFile(const boost::filesystem::path& p);

} // namespace Nerix::Common::Utils::filesystem
