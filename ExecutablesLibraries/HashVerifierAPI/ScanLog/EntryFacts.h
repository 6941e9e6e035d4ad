#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Nerix {

/// The facts of an entry besides its path and status. Each value is the result of steps that begin with 0, so
/// it depends on nothing else.
struct EntryFacts {
    struct Attribute {
        std::string name;
        std::uint64_t value = 0; ///< of the step over the attribute's value
    };

    std::uint64_t content = 0;         ///< of the steps over a file's content; 0 if that is empty
    std::string target;                ///< of a link
    std::vector<Attribute> attributes; ///< in the byte order of their names
};

} // namespace Nerix
