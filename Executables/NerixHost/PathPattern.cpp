#include "Executables/NerixHost/PathPattern.h"

#include <algorithm>
#include <stdexcept>

#include <fnmatch.h>

namespace Nerix {

namespace {

using Names = std::vector<std::string>;

/// Returns the texts between slashes, without empty ones.
Names namesIn(std::string_view path) {
    Names names;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        if (end != 0) {
            names.emplace_back(path.substr(0, end));
        }
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return names;
}

bool matchesFrom(Names::const_iterator pattern, Names::const_iterator patternEnd, Names::const_iterator name,
                 Names::const_iterator nameEnd) {
    if (pattern == patternEnd) {
        return name == nameEnd;
    }
    if (*pattern == "**") {
        for (; name != nameEnd; ++name) {
            if (matchesFrom(pattern + 1, patternEnd, name, nameEnd)) {
                return true;
            }
        }
        return matchesFrom(pattern + 1, patternEnd, nameEnd, nameEnd);
    }
    return name != nameEnd && ::fnmatch(pattern->c_str(), name->c_str(), 0) == 0 &&
           matchesFrom(pattern + 1, patternEnd, name + 1, nameEnd);
}

} // namespace

PathPattern::PathPattern(const std::string& text)
    : m_text(text), m_names(namesIn(text)), m_isAnchored(text.find('/') != std::string::npos) {
    if (m_names.empty()) {
        throw std::runtime_error("the pattern '" + text + "' contains no name");
    }
    // Several "**" in a row match the same paths as one, but take exponential time.
    m_names.erase(
        std::unique(m_names.begin(), m_names.end(),
                    [](const std::string& a, const std::string& b) { return a == "**" && b == "**"; }),
        m_names.end());
}

bool PathPattern::matches(const Names& names) const {
    const auto first = m_isAnchored || names.empty() ? names.begin() : names.end() - 1;
    return matchesFrom(m_names.begin(), m_names.end(), first, names.end());
}

bool isExcluded(std::string_view path, const std::vector<PathPattern>& patterns) {
    if (patterns.empty()) {
        return false;
    }
    Names above;
    for (std::string& name : namesIn(path)) {
        above.push_back(std::move(name));
        if (std::any_of(patterns.begin(), patterns.end(),
                        [&](const PathPattern& pattern) { return pattern.matches(above); })) {
            return true;
        }
    }
    return false;
}

} // namespace Nerix
