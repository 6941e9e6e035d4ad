#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctionBase.h"

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/ChainSource.h"

namespace Nerix::HashFunctions {

IHashFunction::hash_t HashFunctionBase::apply(hash_t value, const std::string& text) const {
    return apply(value, static_cast<unsigned int>(text.size()), text.data());
}

IHashFunction::hash_t HashFunctionBase::apply(hash_t value, std::FILE* stream) const {
    char buffer[4096];
    while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, stream)) {
        value = apply(value, static_cast<unsigned int>(count), buffer);
    }
    return value;
}

void HashFunctionBase::applyChains(ChainSource& source) const {
    ChainSource::Step step;
    while (source.next(0, step)) {
        step.value = apply(step.value, step.length, step.data);
    }
}

} // namespace Nerix::HashFunctions
