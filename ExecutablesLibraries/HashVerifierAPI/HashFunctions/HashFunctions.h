#pragma once

#include <string>
#include <vector>

namespace Nerix {

class IHashFunction;

namespace HashFunctions {

/// The hash function of the method called exactly hashMethod, one of methods(). It lives until the process
/// ends. Throws GenericException "unknown hash function: " + hashMethod for any other name.
const IHashFunction& getInstance(const std::string& hashMethod);

/// The names that getInstance knows, in the order in which a help text lists them.
std::vector<std::string> methods();

} // namespace HashFunctions

} // namespace Nerix
