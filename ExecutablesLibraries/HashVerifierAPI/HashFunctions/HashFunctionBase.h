#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"

namespace Nerix::HashFunctions {

/// Implements the string and stream overloads with the primitive one, which derived classes provide.
class HashFunctionBase : public IHashFunction {
public:
    using IHashFunction::apply;
    hash_t apply(hash_t value, const std::string& text) const override;
    hash_t apply(hash_t value, std::FILE* stream) const override;
};

} // namespace Nerix::HashFunctions
