#pragma once

#include "Common/Base/Files.h"

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Nerix {

/// A scan log that cannot be used; what() names the file and the reason.
class ScanLogError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a log file line by line, any number of times. Memory use does not grow with the file, because a line
/// longer than any record is an error. One thread at a time may use an object.
class LogLines {
public:
    /// Opens the file. If it is not a regular file, for example a pipe, it is first copied to an unnamed
    /// temporary file. Throws ScanLogError if it cannot be opened or completely copied.
    explicit LogLines(const std::string& file);

    /// Reads an open regular file from its beginning. name: used in error messages.
    LogLines(std::string name, Common::File file);

    /// Moves to the next line. Returns false at the end. Throws ScanLogError if the file cannot be read or
    /// the line is too long.
    bool next();

    /// Goes back to the beginning.
    void rewind();

    /// Returns the current line without its line feed; valid until the next call.
    std::string_view line() const { return m_line; }

    /// Returns true if the line ends in a line feed. Only the last one of a file may lack it.
    bool isTerminated() const { return m_isTerminated; }

    /// Returns the number of the current line, counted from 1, or 0 before the first line.
    std::uint64_t number() const { return m_number; }

    /// Throws ScanLogError "file: reason".
    [[noreturn]] void throwError(const std::string& reason) const;

private:
    Common::File copied(std::FILE* from) const;
    bool readMore();

    const std::string m_name;
    Common::File m_file;
    std::string m_bytes;     ///< read from the file: the current line and those after it
    std::size_t m_begin = 0; ///< where the next line begins in m_bytes
    std::string_view m_line;
    bool m_isTerminated = true;
    std::uint64_t m_number = 0;
};

} // namespace Nerix
