#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/TrivialHashFunction.h"

namespace Nerix::HashFunctions {

IHashFunction::hash_t TrivialHashFunction::apply(hash_t value, unsigned int length, const char*) const {
    return value + length;
}

} // namespace Nerix::HashFunctions
