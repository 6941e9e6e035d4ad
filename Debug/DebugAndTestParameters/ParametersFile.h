#pragma once

#include "Debug/DebugAndTestParameters/ParametersArchive.h"

#include <sstream>
#include <string>

/// Parameters in a file of their own.
namespace Nerix::ParametersFile {

/// Writes text into the file, in place of what it holds; its owner, mode and links stay. Throws
/// std::system_error with the reason; the file may then be cut short.
void write(const std::string& path, const std::string& text);

/// Writes the parameters' XML form into the file. Throws as write, and as ParametersArchive::write with the
/// file as it was.
template <class Parameters>
void save(const std::string& path, const Parameters& parameters) {
    // By way of a text: an archive whose stream fails throws from its destructor.
    std::ostringstream text;
    ParametersArchive::write(text, parameters);
    write(path, text.str());
}

} // namespace Nerix::ParametersFile
