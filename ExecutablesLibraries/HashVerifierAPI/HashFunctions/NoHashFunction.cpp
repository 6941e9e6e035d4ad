#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/NoHashFunction.h"

namespace Nerix::HashFunctions {

IHashFunction::hash_t NoHashFunction::apply(hash_t value, unsigned int, const char*) const {
    return value;
}

} // namespace Nerix::HashFunctions
