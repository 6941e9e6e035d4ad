// Both logs are in the order of the walk, so one pass merges them (merge). It collects the entries that
// differ and those that only one log has. Then entries that were moved are found among the latter
// (findMovedEntries), and the others are combined into one difference for each subtree (addOneSided).

#include "Executables/NerixHost/TreeComparison.h"

#include "Executables/NerixHost/MovedEntries.h"
#include "Executables/NerixHost/QuotedName.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/WalkOrder.h"

#include <algorithm>
#include <cstdlib>
#include <unordered_map>

namespace Nerix {

namespace {

std::uint64_t fileSize(const OneSidedEntry& entry) {
    return entry.details && entry.details->kind == "file"
               ? std::strtoull(entry.details->size.c_str(), nullptr, 10)
               : 0;
}

std::string parentOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

class Comparison {
public:
    Comparison(ScanLogReader& before, ScanLogReader& after, const ComparisonRules& rules)
        : m_rules(rules),
          m_before(before, rules.excluded),
          m_after(after, rules.excluded),
          m_hasHeader(before.header().has_value()),
          m_areValuesMeaningful(before.root() == after.root() && rules.ignored.empty()) {}

    ComparisonResult run() {
        merge();
        if (m_hasHeader) {
            std::vector<Difference> moved = findMovedEntries(m_removed, m_added, m_rules.ignored);
            m_result.differences.insert(m_result.differences.end(), moved.begin(), moved.end());
        }
        findChangedKinds();
        addOneSided(m_removed, Difference::Kind::removed);
        addOneSided(m_added, Difference::Kind::added);
        std::stable_sort(m_result.differences.begin(), m_result.differences.end(),
                         [](const Difference& a, const Difference& b) {
                             return a.kind != b.kind ? a.kind < b.kind
                                                     : compareInWalkOrder(a.path, b.path) < 0;
                         });
        m_result.entries = m_after.count();
        return std::move(m_result);
    }

private:
    void merge() {
        m_before.advance();
        m_after.advance();
        while (m_before.hasEntry() || m_after.hasEntry()) {
            const int order = nextInOrder();
            if (order == 0) {
                compareEntries();
                m_before.advance();
                m_after.advance();
            } else {
                EntryReader& side = order < 0 ? m_before : m_after;
                (order < 0 ? m_removed : m_added).push_back({side.entry().path, side.details()});
                m_lastDifference = side.entry().path;
                side.advance();
            }
        }
    }

    /// Returns a negative number if only the earlier tree has the next entry, a positive one if only the
    /// later one has it, 0 if both have it.
    int nextInOrder() const {
        if (!m_before.hasEntry()) {
            return 1;
        }
        return m_after.hasEntry() ? compareInWalkOrder(m_before.entry().path, m_after.entry().path) : -1;
    }

    void compareEntries() {
        const bool hasOtherValue = m_before.entry().value != m_after.entry().value;
        std::vector<FactChange> facts;
        std::optional<RecordDetails> before;
        std::optional<RecordDetails> after;
        if (m_before.entry().details != m_after.entry().details) {
            before = m_before.details();
            after = m_after.details();
        }
        if (before && after) {
            facts = changedFacts(*before, *after, m_rules.ignored);
        }
        const bool isUnexplained =
            hasOtherValue && isValueMeaningful() && !isBelow(m_lastDifference, m_after.entry().path);
        if (facts.empty() && !isUnexplained) {
            return;
        }
        if (facts.empty() && before && after) {
            facts = sizeAndLinks(*before, *after);
        }
        m_lastDifference = m_after.entry().path;
        m_result.differences.push_back({Difference::Kind::changed, m_lastDifference, "", std::move(facts)});
    }

    /// Returns true if the current entries differ if and only if their values do.
    bool isValueMeaningful() const {
        const bool mayContainExcluded =
            !m_rules.excluded.empty() && (m_before.hasEntriesBelow() || m_after.hasEntriesBelow());
        return m_areValuesMeaningful && !mayContainExcluded;
    }

    /// Returns the changes of link count and size, also those that changedFacts leaves out. Used if nothing
    /// else explains why the value differs.
    static std::vector<FactChange> sizeAndLinks(const RecordDetails& before, const RecordDetails& after) {
        std::vector<FactChange> facts;
        if (before.links != after.links) {
            facts.push_back({Fact::links, "", before.links, after.links});
        }
        if (before.size != after.size) {
            facts.push_back({Fact::size, "", before.size, after.size});
        }
        return facts;
    }

    /// Stores the indexes of the differences in kind. addOneSided counts the entries below a directory that
    /// became a file or link, or the reverse, as part of that difference.
    void findChangedKinds() {
        for (std::size_t index = 0; index != m_result.differences.size(); ++index) {
            const Difference& difference = m_result.differences[index];
            if (!difference.facts.empty() && difference.facts[0].fact == Fact::kind) {
                m_changedKinds.emplace(difference.path, index);
            }
        }
    }

    /// Adds a difference for each subtree of unexplained entries or, with listsAll, for each such entry.
    void addOneSided(const OneSidedEntries& entries, Difference::Kind kind) {
        // From the end, a directory comes directly before everything below it.
        Difference* top = nullptr;
        std::vector<Difference> tops;
        tops.reserve(entries.size()); // so that pointers stay valid
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            if (entry->isExplained) {
                continue;
            }
            const bool isInTop = top != nullptr && isBelow(entry->path, top->path);
            if (isInTop && !m_rules.listsAll) {
                ++top->below;
                top->bytes += fileSize(*entry);
                continue;
            }
            const auto changed = m_changedKinds.find(parentOf(entry->path));
            if (changed != m_changedKinds.end() && !m_rules.listsAll) {
                top = &m_result.differences[changed->second];
                ++top->below;
                continue;
            }
            tops.push_back({kind, entry->path, "", {}, 0, fileSize(*entry)});
            top = &tops.back();
        }
        m_result.differences.insert(m_result.differences.end(), tops.begin(), tops.end());
    }

    const ComparisonRules& m_rules;
    EntryReader m_before;
    EntryReader m_after;
    const bool m_hasHeader;
    const bool m_areValuesMeaningful; ///< except those of directories that contain excluded entries
    OneSidedEntries m_removed;
    OneSidedEntries m_added;
    std::string m_lastDifference;                                ///< path of the last entry that differs
    std::unordered_map<std::string, std::size_t> m_changedKinds; ///< indexes of differences, by path
    ComparisonResult m_result;
};

/// Throws ScanLogError if the logs cannot be compared.
void checkComparable(const ScanLogReader& before, const ScanLogReader& after, const ComparisonRules& rules) {
    const auto& old = before.header();
    const auto& now = after.header();
    if (old.has_value() != now.has_value()) {
        throw ScanLogError(std::string("the ") + (old ? "second" : "first") +
                           " log has no details, or those of an older version; record both with "
                           "'NerixHost scan --log FILE --details'");
    }
    if (old && old->method != now->method) {
        throw ScanLogError("the logs were recorded with different hash methods, " + old->method + " and " +
                           now->method + "; scan both trees with the same one (--hash)");
    }
    if (!old && before.root() != after.root()) {
        throw ScanLogError("the logs are of different trees, " + quotedName(before.root()) + " and " +
                           quotedName(after.root()) +
                           "; values depend on paths, so record both with --details");
    }
    if (!old && !rules.ignored.empty()) {
        throw ScanLogError("facts can be ignored only in logs with details; record both with 'NerixHost scan "
                           "--log FILE --details'");
    }
}

} // namespace

std::uint64_t countOf(const ComparisonResult& result, Difference::Kind kind) {
    return static_cast<std::uint64_t>(
        std::count_if(result.differences.begin(), result.differences.end(),
                      [&](const Difference& difference) { return difference.kind == kind; }));
}

std::uint64_t bytesOf(const ComparisonResult& result, Difference::Kind kind) {
    std::uint64_t bytes = 0;
    for (const Difference& difference : result.differences) {
        bytes += difference.kind == kind ? difference.bytes : 0;
    }
    return bytes;
}

ComparisonResult compareTrees(ScanLogReader& before, ScanLogReader& after, const ComparisonRules& rules) {
    checkComparable(before, after, rules);
    return Comparison(before, after, rules).run();
}

} // namespace Nerix
