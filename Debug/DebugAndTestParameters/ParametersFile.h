#pragma once

#include "Debug/DebugAndTestParameters/ParametersArchive.h"

#include <sstream>
#include <string>

/// Saves parameters to a separate file.
namespace Nerix::ParametersFile {

/// Overwrites the file in place, keeping owner, mode and hard links. Throws std::system_error; the file may
/// then be truncated.
void write(const std::string& path, const std::string& text);

/// Writes the XML form of the parameters to the file. Throws the exceptions of write, and those of
/// ParametersArchive::write, which leave the file unchanged.
template <class Parameters>
void save(const std::string& path, const Parameters& parameters) {
    // Via a string: an archive throws from its destructor if its stream fails.
    std::ostringstream text;
    ParametersArchive::write(text, parameters);
    write(path, text.str());
}

} // namespace Nerix::ParametersFile
