#pragma once

#include "Debug/DebugAndTestParameters/ParametersArchive.h"

#include <fstream>
#include <sstream>
#include <string>

/// Parameters in a file of their own.
namespace Nerix::ParametersFile {

/// Opens the file for reading; closed when it cannot be opened or is no regular file: a pipe would wait for its writer.
std::ifstream open(const std::string& path);

/// Replaces the file by one with this text, by way of path + ".new"; or leaves it as it was, removes that and throws
/// std::system_error with the reason.
void replace(const std::string& path, const std::string& text);

/// Replaces the file by the parameters' XML form. Throws as replace and ParametersArchive::write.
template <class Parameters>
void save(const std::string& path, const Parameters& parameters) {
    // By way of a text: an archive whose stream fails throws from its destructor.
    std::ostringstream text;
    ParametersArchive::write(text, parameters);
    replace(path, text.str());
}

} // namespace Nerix::ParametersFile
