#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctionBase.h"

namespace Nerix::HashFunctions {

IHashFunction::hash_t HashFunctionBase::apply(hash_t value, const std::string& text) const {
    return apply(value, static_cast<unsigned int>(text.size()), text.data());
}

IHashFunction::hash_t HashFunctionBase::apply(hash_t value, std::FILE* stream) const {
    char buffer[4096];
    std::size_t count = 0;
    do {
        count = std::fread(buffer, 1, sizeof buffer, stream);
        if (count != 0) {
            value = apply(value, static_cast<unsigned int>(count), buffer);
        }
    } while (count == sizeof buffer); // less is the end: asking again would cost every file a system call
    return value;
}

} // namespace Nerix::HashFunctions
