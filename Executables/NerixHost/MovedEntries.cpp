// Directories are compared by a fingerprint of everything below them: names, kinds, contents and targets. The
// fingerprints are computed in one pass, because a directory comes directly after what is below it. Directories
// are matched from the outermost inwards, then the files and links that are left.

#include "Executables/NerixHost/MovedEntries.h"

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/WalkOrder.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <unordered_map>

namespace Nerix {

namespace {

using Fingerprint = std::size_t;

/// The entries that a search considers.
enum class Searched { directories, others };

Fingerprint combined(Fingerprint a, Fingerprint b) {
    return std::hash<std::string_view>()({reinterpret_cast<const char*>(&a), sizeof a}) * 31 + b;
}

Fingerprint fingerprintOf(std::string_view text) {
    return std::hash<std::string_view>()(text);
}

std::string_view nameIn(const std::string& path) {
    return std::string_view(path).substr(path.rfind('/') + 1);
}

/// Returns the fingerprint of a file or link.
Fingerprint fingerprintOf(const RecordDetails& details) {
    if (details.kind == "link") {
        return combined(fingerprintOf(details.kind), fingerprintOf(details.facts.target));
    }
    return combined(combined(fingerprintOf(details.kind), details.facts.content),
                    fingerprintOf(details.size));
}

/// One side, with the fingerprint and the extent of each entry.
class Side {
public:
    explicit Side(OneSidedEntries& entries)
        : m_entries(entries),
          m_fingerprints(entries.size()),
          m_begins(entries.size()),
          m_isCandidate(entries.size()) {
        for (std::size_t index = 0; index != entries.size(); ++index) {
            m_begins[index] = index;
            if (isDirectory(index)) {
                addDirectory(index);
            } else {
                m_fingerprints[index] = fingerprintOf(*entries[index].details);
                m_isCandidate[index] = entries[index].details->size != "0";
            }
        }
    }

    OneSidedEntry& operator[](std::size_t index) { return m_entries[index]; }
    std::size_t size() const { return m_entries.size(); }

    bool isDirectory(std::size_t index) const { return m_entries[index].details->kind == "directory"; }
    Fingerprint fingerprint(std::size_t index) const { return m_fingerprints[index]; }

    /// Returns the index of the first entry below a directory. For any other entry, returns its own index.
    std::size_t begin(std::size_t index) const { return m_begins[index]; }

    /// Maps the fingerprint of each candidate to its index, or to size() if several have it.
    std::unordered_map<Fingerprint, std::size_t> uniqueEntries(Searched searched) const {
        std::unordered_map<Fingerprint, std::size_t> found;
        for (std::size_t index = 0; index != m_entries.size(); ++index) {
            if (isDirectory(index) == (searched == Searched::directories) && m_isCandidate[index] &&
                !m_entries[index].isExplained && !found.emplace(m_fingerprints[index], index).second) {
                found[m_fingerprints[index]] = size();
            }
        }
        return found;
    }

private:
    void addDirectory(std::size_t index) {
        const std::string& path = m_entries[index].path;
        Fingerprint all = fingerprintOf(m_entries[index].details->kind);
        std::size_t begin = index;
        while (begin != 0 && isBelow(m_entries[begin - 1].path, path)) {
            const std::size_t child = begin - 1; // the last child not yet visited
            all =
                combined(combined(all, m_fingerprints[child]), fingerprintOf(nameIn(m_entries[child].path)));
            all = combined(all, fingerprintOf(m_entries[child].details->kind));
            m_isCandidate[index] = m_isCandidate[index] || m_isCandidate[child];
            begin = m_begins[child];
        }
        m_begins[index] = begin;
        m_fingerprints[index] = all;
    }

    OneSidedEntries& m_entries;
    std::vector<Fingerprint> m_fingerprints;
    std::vector<std::size_t> m_begins;
    std::vector<bool> m_isCandidate; ///< a file or link that is not empty, or a directory with one below
};

class Search {
public:
    Search(OneSidedEntries& removed, OneSidedEntries& added, const FactSet& ignored)
        : m_removed(removed), m_added(added), m_ignored(ignored) {}

    void find(Searched searched) {
        const auto removed = m_removed.uniqueEntries(searched);
        const auto added = m_added.uniqueEntries(searched);
        // From the end, so that a directory comes before the directories in it.
        for (std::size_t before = m_removed.size(); before-- != 0;) {
            const auto own = removed.find(m_removed.fingerprint(before));
            const auto other = added.find(m_removed.fingerprint(before));
            if (own != removed.end() && own->second == before && other != added.end() &&
                other->second != m_added.size() && isSame(before, other->second)) {
                addMoved(before, other->second);
            }
        }
    }

    std::vector<Difference> found;

private:
    /// Returns true if the two subtrees have the same entries, none of which is explained yet.
    bool isSame(std::size_t before, std::size_t after) {
        const std::size_t count = before - m_removed.begin(before);
        if (count != after - m_added.begin(after)) {
            return false;
        }
        const std::size_t oldRoot = m_removed[before].path.size();
        const std::size_t newRoot = m_added[after].path.size();
        for (std::size_t offset = 0; offset <= count; ++offset) {
            const OneSidedEntry& old = m_removed[before - offset];
            const OneSidedEntry& now = m_added[after - offset];
            if (old.isExplained || now.isExplained || old.details->kind != now.details->kind ||
                old.details->facts.content != now.details->facts.content ||
                old.details->facts.target != now.details->facts.target ||
                old.path.compare(oldRoot, std::string::npos, now.path, newRoot, std::string::npos) != 0) {
                return false;
            }
        }
        return true;
    }

    void addMoved(std::size_t before, std::size_t after) {
        const std::size_t count = before - m_removed.begin(before);
        for (std::size_t offset = count; offset != 0; --offset) {
            OneSidedEntry& old = m_removed[before - offset];
            OneSidedEntry& now = m_added[after - offset];
            std::vector<FactChange> facts = changedFacts(*old.details, *now.details, m_ignored);
            if (!facts.empty()) {
                found.push_back({Difference::Kind::changed, now.path, "", std::move(facts)});
            }
            old.isExplained = true;
            now.isExplained = true;
        }
        OneSidedEntry& old = m_removed[before];
        OneSidedEntry& now = m_added[after];
        found.push_back({Difference::Kind::moved, old.path, now.path,
                         changedFacts(*old.details, *now.details, m_ignored), count});
        old.isExplained = true;
        now.isExplained = true;
    }

    Side m_removed;
    Side m_added;
    const FactSet& m_ignored;
};

} // namespace

std::vector<Difference> findMovedEntries(OneSidedEntries& removed, OneSidedEntries& added,
                                         const FactSet& ignored) {
    Search search(removed, added, ignored);
    search.find(Searched::directories);
    search.find(Searched::others);
    return std::move(search.found);
}

} // namespace Nerix
