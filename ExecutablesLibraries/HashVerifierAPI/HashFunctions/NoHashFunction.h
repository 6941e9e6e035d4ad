#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctionBase.h"

namespace Nerix::HashFunctions {

/// "none": the value never changes; what remains of a verification is the walk and its scan log.
class NoHashFunction final : public HashFunctionBase {
public:
    using HashFunctionBase::apply;
    hash_t apply(hash_t value, unsigned int, const char*) const override { return value; }
};

} // namespace Nerix::HashFunctions
