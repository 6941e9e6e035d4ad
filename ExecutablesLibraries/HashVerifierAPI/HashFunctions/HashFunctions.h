#pragma once

#include <string>
#include <vector>

namespace Nerix {

class IHashFunction;

namespace HashFunctions {

/// The hash function called exactly so, one of names(). It lives until the process ends. Throws
/// GenericException "unknown hash function: " + name for any other name.
const IHashFunction& getInstance(const std::string& name);

/// The names that getInstance knows.
std::vector<std::string> names();

} // namespace HashFunctions

} // namespace Nerix
