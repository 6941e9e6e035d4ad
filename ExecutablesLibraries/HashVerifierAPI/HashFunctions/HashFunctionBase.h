#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"

namespace Nerix::HashFunctions {

/// Implements the other functions with apply(value, length, data), which derived classes provide. applyChains
/// takes one step of one chain at a time. Steps are not reported.
class HashFunctionBase : public IHashFunction {
public:
    using IHashFunction::apply;
    hash_t apply(hash_t value, const std::string& text) const override;
    hash_t apply(hash_t value, std::FILE* stream) const override;
    bool reportsSteps() const override { return false; }
    std::size_t lanes() const override { return 1; }
    void applyChains(ChainSource& source) const override;
};

} // namespace Nerix::HashFunctions
