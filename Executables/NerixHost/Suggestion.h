#pragma once

#include <string>
#include <vector>

namespace Nerix {

/// Returns the known word that is most similar to word, or an empty string if it takes more changes than a
/// third of the known word's length to turn one into the other. A known word that contains word is the most
/// similar.
std::string nearest(const std::string& word, const std::vector<std::string>& known);

/// Returns "; did you mean 'WORD'?" with the word that nearest returns, or an empty string if there is none.
std::string didYouMean(const std::string& word, const std::vector<std::string>& known);

} // namespace Nerix
