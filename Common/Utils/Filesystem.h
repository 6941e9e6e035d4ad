#pragma once

#include <boost/filesystem/path.hpp>

#include <cstdint>
#include <fstream>

/// Thin wrappers that fix a few choices: queries look at the entry itself and never follow a final link, a
/// dangling link exists, prefixes match whole path elements.
///
/// A wrapper that fails throws boost::filesystem::filesystem_error and logs its own name and the path. For a
/// query, a missing entry is not a failure, but an unsearchable directory is. Any thread may call.
namespace Nerix::Common::Utils::filesystem {

/// Whether the text begins with '/' or '\'. Looks at the text alone.
bool is_unix_absolute(const boost::filesystem::path& p);

/// p without its trailing separators; "/" stays.
boost::filesystem::path stripTrailingSlashes(const boost::filesystem::path& p);

/// Whether there is an entry of any type, a dangling link included.
bool exists_any(const boost::filesystem::path& p);

/// Whether the entry is a directory; a link to one is not.
bool is_directory(const boost::filesystem::path& p);

/// Whether the entry is a regular file; a link to one is not.
bool is_regular_file(const boost::filesystem::path& p);

/// Opens the file for reading, following links; the stream is closed if that fails or the file is not regular
/// (opening a FIFO would block).
std::ifstream openRegularFile(const boost::filesystem::path& p);

/// Opens the file for writing, following links, and makes or empties it. Closed, with errno set, when that
/// fails or when something else than a regular file has the name: opening a FIFO would wait for a reader.
std::ofstream openRegularFileToWrite(const boost::filesystem::path& p);

/// Whether the entry is a symbolic link.
bool is_symlink(const boost::filesystem::path& p);

/// Removes a file or an empty directory. Returns false if there was none.
bool remove(const boost::filesystem::path& p);

/// Atomically replaces any file at `to`; both must be on the same file system.
void rename(const boost::filesystem::path& from, const boost::filesystem::path& to);

/// The absolute path without links, "." and "..", a relative p taken from base. The entry must exist.
boost::filesystem::path canonical(const boost::filesystem::path& p, const boost::filesystem::path& base);

/// Whether the elements of prefix, trailing separators aside, are the first elements of path. An empty prefix
/// is a prefix of everything.
bool pathStartsWith(const boost::filesystem::path& path, const boost::filesystem::path& prefix);

/// path without the elements of prefix, as an absolute path; "/" when nothing is left. An empty prefix leaves
/// an absolute path as it is. Throws GenericException with a stream entry when path does not start with
/// prefix.
boost::filesystem::path removePathPrefix(const boost::filesystem::path& path,
                                         const boost::filesystem::path& prefix);

/// Polls once a second until the entry exists (returns true) or timeoutSeconds have passed (returns false).
/// Polls at least once. The wait is an interruption point.
bool waitForFile(const boost::filesystem::path& p, std::int64_t timeoutSeconds);

/// The same without limit.
bool waitForFile(const boost::filesystem::path& p);

} // namespace Nerix::Common::Utils::filesystem
