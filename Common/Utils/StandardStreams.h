#pragma once

#include <string>

namespace Nerix::Common::Utils {

/// Call it before anything opens a file: if the parent process closed a standard stream, the first file
/// opened would get its descriptor and our output would be written into that file. Opens /dev/null on closed
/// descriptors (read-only for standard output, so that writing fails). Also ignores SIGPIPE and SIGXFSZ, so
/// that a write fails instead of killing the process.
///
/// Returns false, after printing the reason to standard error, if that fails; the program must then exit.
bool secureStandardStreams();

/// Writes text to standard output and flushes it. Throws GenericException with the system's reason.
void writeToStandardOutput(const std::string& text);

/// Writes text to standard output or, when that fails, the whole of it to standard error.
void writeReport(const std::string& text) noexcept;

} // namespace Nerix::Common::Utils
