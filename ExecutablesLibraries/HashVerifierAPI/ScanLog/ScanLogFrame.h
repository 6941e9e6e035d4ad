#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The first and the last line of a scan log with facts:
///
///     NerixScanLog 2 METHOD USER "ROOT"
///     complete ENTRIES
///
/// USER is the numeric user id of the scan, ROOT the path of the tree as it was hashed, in the form of
/// quotedFact (RecordDetails.h), ENTRIES the number of records.
namespace Nerix {

struct ScanLogHeader {
    std::string method; ///< the hash method
    std::uint32_t user = 0;
    std::string root;

    /// Returns the line without its line feed.
    std::string text() const;

    /// Returns nullopt if the line is not a header of this version.
    static std::optional<ScanLogHeader> parse(std::string_view line);

    /// Returns true if the line is the header of a log of any version.
    static bool isHeader(std::string_view line);
};

/// Returns the last line without its line feed.
std::string scanLogEnd(std::uint64_t entries);

/// Returns the number of entries that the last line gives, or nullopt if it is a different line.
std::optional<std::uint64_t> parseScanLogEnd(std::string_view line);

} // namespace Nerix
