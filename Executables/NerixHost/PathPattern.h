#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Nerix {

/// A pattern of --exclude. One without '/' matches an entry of that name anywhere; one with '/' matches a path
/// below the root. '*', '?' and '[...]' match within a name, "**" as a whole name matches any number of names,
/// also none. '\' makes the next character literal. A '/' at the beginning or end has no other effect than to
/// anchor the pattern to the root.
class PathPattern {
public:
    /// Throws std::runtime_error if the pattern has no name.
    explicit PathPattern(const std::string& text);

    const std::string& text() const { return m_text; }

    /// Returns true if the pattern matches the entry whose path has these names.
    bool matches(const std::vector<std::string>& names) const;

private:
    std::string m_text;
    std::vector<std::string> m_names; ///< one pattern per name
    bool m_isAnchored;                ///< to the root
};

/// Returns true if a pattern matches the entry or a directory that contains it. path: below the root, with a
/// slash in front of each name.
bool isExcluded(std::string_view path, const std::vector<PathPattern>& patterns);

} // namespace Nerix
