#pragma once

#include <string>

namespace Nerix {

class IHashFunction;

namespace HashFunctions {

/// The hash function called name: "none", "trivial", "sha1" or "md5", exactly. It lives until the process
/// ends. Throws GenericException "unknown hash function: " + name for any other name.
const IHashFunction& getInstance(const std::string& name);

} // namespace HashFunctions

} // namespace Nerix
