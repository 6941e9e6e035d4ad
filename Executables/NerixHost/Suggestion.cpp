#include "Executables/NerixHost/Suggestion.h"

#include <algorithm>
#include <numeric>

namespace Nerix {

namespace {

/// Returns how many characters to replace, insert, delete or swap with the next one to turn a into b.
std::size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> before(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    std::vector<std::size_t> next(b.size() + 1);
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 0; i < a.size(); ++i) {
        next[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            next[j + 1] = std::min({row[j] + (a[i] == b[j] ? 0 : 1), row[j + 1] + 1, next[j] + 1});
            if (i > 0 && j > 0 && a[i] == b[j - 1] && a[i - 1] == b[j]) {
                next[j + 1] = std::min(next[j + 1], before[j - 1] + 1);
            }
        }
        std::swap(before, row);
        std::swap(row, next);
    }
    return row.back();
}

std::size_t distance(const std::string& word, const std::string& known) {
    return !word.empty() && known.find(word) != std::string::npos ? 0 : editDistance(word, known);
}

} // namespace

std::string nearest(const std::string& word, const std::vector<std::string>& known) {
    const auto found =
        std::min_element(known.begin(), known.end(), [&](const std::string& a, const std::string& b) {
            return distance(word, a) < distance(word, b);
        });
    return found != known.end() && 3 * distance(word, *found) <= found->size() ? *found : "";
}

std::string didYouMean(const std::string& word, const std::vector<std::string>& known) {
    const std::string other = nearest(word, known);
    return other.empty() ? "" : "; did you mean '" + other + "'?";
}

} // namespace Nerix
