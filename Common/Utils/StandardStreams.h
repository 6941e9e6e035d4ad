#pragma once

#include <string>

namespace Nerix::Common::Utils {

/// Opens /dev/null for each standard stream that the parent process closed (read-only for standard output, so
/// that writing fails). Otherwise the first file opened would get the free descriptor, and our output would
/// be written into that file. Also ignores SIGPIPE and SIGXFSZ, so that a write fails instead of killing the
/// process. Call it before anything opens a file.
///
/// Returns false, after printing the reason to standard error, if /dev/null cannot be opened; the program
/// must then exit.
bool secureStandardStreams();

/// Writes text to standard output and flushes it. On failure, throws GenericException with the reason.
void writeToStandardOutput(const std::string& text);

/// Writes text to standard output. If that fails, writes all of it to standard error.
void writeReport(const std::string& text) noexcept;

} // namespace Nerix::Common::Utils
