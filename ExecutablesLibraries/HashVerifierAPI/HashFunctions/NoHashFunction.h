#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctionBase.h"

namespace Nerix::HashFunctions {

/// "none": the value never changes, so a verification only walks the tree and writes the scan log.
class NoHashFunction final : public HashFunctionBase {
public:
    using HashFunctionBase::apply;
    hash_t apply(hash_t value, unsigned int, const char*) const override { return value; }
};

} // namespace Nerix::HashFunctions
