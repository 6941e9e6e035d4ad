#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Nerix {

/// One line of a host's system log, in the form that LoggingClass writes:
///
///     2026-11-24T01:45:08.300+00:00 I org.corvan.tv.nerix.NERIX [process][thread][number][level] text
///
/// The text before the tag depends on where the log is stored.
struct SystemLogLine {
    std::string_view thread; ///< the thread's number and name; a view into the line
    std::uint64_t number;    ///< counts the log lines of the process
    std::string text;        ///< as it was logged: escape sequences are resolved

    /// Returns nullopt if the line has a different form.
    static std::optional<SystemLogLine> parse(std::string_view line);
};

} // namespace Nerix
