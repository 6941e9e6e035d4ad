#pragma once

#include "Debug/DebugAndTestParameters/ParametersArchive.h"

#include <sstream>
#include <string>

/// Parameters in a file of their own.
namespace Nerix::ParametersFile {

/// Overwrites the file in place, keeping owner, mode and hard links. Throws std::system_error; the file may
/// then be truncated.
void write(const std::string& path, const std::string& text);

/// Writes the parameters' XML form into the file. Throws like write; also like ParametersArchive::write, in
/// which case the file is unchanged.
template <class Parameters>
void save(const std::string& path, const Parameters& parameters) {
    // Via a string: an archive throws from its destructor if its stream fails.
    std::ostringstream text;
    ParametersArchive::write(text, parameters);
    write(path, text.str());
}

} // namespace Nerix::ParametersFile
