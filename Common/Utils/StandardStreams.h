#pragma once

#include <string>

namespace Nerix::Common::Utils {

/// To be called before anything opens a file. A standard descriptor that the caller closed would be given to
/// the first file opened, and the result would be written into that file: each closed one is filled, standard
/// output in a way that writing to it fails. A reader that goes away and a limit on the size of files fail
/// the writing, too, instead of ending the process.
///
/// False, with the reason on standard error, when one could not be filled: the program must end then.
bool secureStandardStreams();

/// Writes text to standard output and flushes it. Throws GenericException with the system's reason when it
/// could not all be written.
void writeToStandardOutput(const std::string& text);

/// Writes text to standard output or, when it could not all be written there, once more and whole to
/// standard error.
void writeReport(const std::string& text) noexcept;

} // namespace Nerix::Common::Utils
