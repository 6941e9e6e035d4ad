#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"

namespace Nerix::HashFunctions {

/// Texts and streams by way of the one primitive step, which a hash function adds.
class HashFunctionBase : public IHashFunction {
public:
    using IHashFunction::apply;
    hash_t apply(hash_t value, const std::string& text) const override;
    hash_t apply(hash_t value, std::FILE* stream) const override;
};

} // namespace Nerix::HashFunctions
