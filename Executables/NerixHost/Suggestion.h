#pragma once

#include <string>
#include <vector>

namespace Nerix {

/// Returns the known word that is most like the given one, or an empty text if none is alike: if more than a
/// third of its characters would have to change. A known word that contains the given one is the most alike.
std::string nearest(const std::string& word, const std::vector<std::string>& known);

/// Returns "; did you mean 'WORD'?" with the nearest known word, or an empty text if none is alike.
std::string didYouMean(const std::string& word, const std::vector<std::string>& known);

} // namespace Nerix
