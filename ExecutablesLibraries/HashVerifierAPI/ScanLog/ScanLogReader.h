#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Nerix {

/// What is wrong with a scan log, and with which.
class ScanLogError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What a scan log says of an entry; the members are those of ScanRecord.h.
struct ScanLogRecord {
    std::uint64_t value = 0;
    std::string path;
    std::string details; ///< without the blank in front; empty in a log without details
};

/// Reads a scan log back, record by record in the order of the walk: the file of a drive, or one with
/// details, or a host's system log, of which it takes the last run and puts the pieces of long records
/// together again. Memory does not grow with the log. One thread at a time may use a reader.
class ScanLogReader {
public:
    /// Reads the log once from beginning to end, and stands at its beginning then. A pipe is copied into a
    /// file without a name first. Throws ScanLogError when the log cannot be read, has no record or is
    /// damaged, and when it is incomplete: its last record is not the root of the others, or records are
    /// missing in a system log that was rotated away.
    explicit ScanLogReader(const std::string& file);

    /// The path of the last record, that of the whole tree.
    const std::string& root() const { return m_root; }

    /// The next record; false at the end. Throws ScanLogError when the log can no longer be read.
    bool next(ScanLogRecord& record);

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    struct Freer {
        void operator()(char* text) const {
            std::free(text);
        } // NOLINT(cppcoreguidelines-no-malloc): getdelim's
    };

    [[noreturn]] void refuse(const std::string& reason) const;
    void open();
    void rewind();
    bool readLine();
    bool nextOfFile(ScanLogRecord& record);
    bool nextOfSystemLog(ScanLogRecord& record);
    void detectFormat();
    void findLastRun();
    void check();

    const std::string m_file;
    std::unique_ptr<std::FILE, Closer> m_stream;
    std::unique_ptr<char, Freer> m_buffer; ///< getdelim's, of m_bufferSize bytes
    std::size_t m_bufferSize = 0;
    std::string_view m_line; ///< in the buffer, without its line feed
    std::uint64_t m_lineNumber = 0;
    bool m_isSystemLog = false;
    std::string m_run;                ///< the thread field of the last run's records, in a system log
    std::uint64_t m_runBegin = 0;     ///< the line of its first record
    std::uint64_t m_recordNumber = 0; ///< of the run's last line that was read; 0 for none
    std::string m_root;
};

} // namespace Nerix
