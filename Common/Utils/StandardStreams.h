#pragma once

#include <string>

namespace Nerix::Common::Utils {

/// Call it before anything opens a file: the first file opened would take the place of a standard stream that
/// the caller closed, and the result would go into that file. Fills the closed ones, standard output so that
/// writing to it fails. Also ignores SIGPIPE and SIGXFSZ, so that a write fails and the process lives on.
///
/// False, with the reason on standard error, when one cannot be filled; the program must then end.
bool secureStandardStreams();

/// Writes text to standard output and flushes it. Throws GenericException with the system's reason.
void writeToStandardOutput(const std::string& text);

/// Writes text to standard output or, when that fails, the whole of it to standard error.
void writeReport(const std::string& text) noexcept;

} // namespace Nerix::Common::Utils
