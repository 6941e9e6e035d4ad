#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Nerix {

/// One line of a host's system log, of the form that LoggingClass gives its records:
///
///     2026-11-24T01:45:08.300+00:00 I org.corvan.tv.nerix.NERIX [process][thread][number][level] text
///
/// What stands in front of the tag depends on where the log is kept.
struct SystemLogLine {
    std::string_view thread; ///< the thread's number and name, in the line
    std::uint64_t number;    ///< counts the records of the process
    std::string text;        ///< as it was logged: escape sequences are resolved

    /// Returns nullopt if the line has a different form.
    static std::optional<SystemLogLine> parse(std::string_view line);
};

} // namespace Nerix
