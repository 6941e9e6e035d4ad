#include "Executables/NerixHost/FactChange.h"

#include "Common/Base/EscapedText.h"
#include "Common/Base/Hexadecimal.h"
#include "Executables/NerixHost/QuotedName.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace Nerix {

namespace {

constexpr const char* names[] = {"kind",  "content", "attributes", "target", "owner",
                                 "group", "links",   "mode",       "size"};

std::string digits(std::uint64_t value) {
    return Common::hexadecimal(value, 16);
}

class Changes {
public:
    explicit Changes(const FactSet& ignored) : m_ignored(ignored) {}

    void add(Fact fact, const std::string& before, const std::string& after) {
        if (before != after && m_ignored.count(fact) == 0) {
            list.push_back({fact, "", before, after});
        }
    }

    void addAttributes(const std::vector<EntryFacts::Attribute>& before,
                       const std::vector<EntryFacts::Attribute>& after) {
        if (m_ignored.count(Fact::attributes) != 0) {
            return;
        }
        std::map<std::string, FactChange> changes;
        for (const EntryFacts::Attribute& attribute : before) {
            changes[attribute.name] = {Fact::attributes, attribute.name, digits(attribute.value), {}};
        }
        for (const EntryFacts::Attribute& attribute : after) {
            FactChange& change = changes[attribute.name];
            change.fact = Fact::attributes;
            change.attribute = attribute.name;
            change.after = digits(attribute.value);
        }
        for (auto& [name, change] : changes) {
            if (change.before != change.after) {
                list.push_back(std::move(change));
            }
        }
    }

    std::vector<FactChange> list;

private:
    const FactSet& m_ignored;
};

/// Returns the name of an attribute that changed, with + if it was added and - if it was removed.
std::string attributeText(const FactChange& change) {
    const char* const sign = !change.before ? "+" : !change.after ? "-" : "";
    return sign + Common::escaped(change.attribute);
}

} // namespace

const char* nameOf(Fact fact) {
    return names[static_cast<std::size_t>(fact)];
}

std::vector<std::string> factNames() {
    return {std::begin(names), std::end(names)};
}

std::optional<Fact> factNamed(std::string_view name) {
    const auto* const found = std::find(std::begin(names), std::end(names), name);
    return found == std::end(names) ? std::nullopt
                                    : std::optional<Fact>(static_cast<Fact>(found - std::begin(names)));
}

std::vector<FactChange> changedFacts(const RecordDetails& before, const RecordDetails& after,
                                     const FactSet& ignored) {
    Changes changes(ignored);
    changes.add(Fact::kind, before.kind, after.kind);
    if (!changes.list.empty()) {
        return std::move(changes.list);
    }
    const bool isSameKind = before.kind == after.kind;
    const std::string& kind = after.kind;
    if (isSameKind && kind == "file") {
        changes.add(Fact::content, digits(before.facts.content), digits(after.facts.content));
    }
    changes.addAttributes(before.facts.attributes, after.facts.attributes);
    if (isSameKind && kind == "link") {
        changes.add(Fact::target, before.facts.target, after.facts.target);
    }
    changes.add(Fact::owner, before.owner, after.owner);
    changes.add(Fact::group, before.group, after.group);
    if (isSameKind && kind != "directory") {
        changes.add(Fact::links, before.links, after.links);
    }
    changes.add(Fact::mode, before.mode, after.mode);
    if (isSameKind && kind == "file") {
        changes.add(Fact::size, before.size, after.size);
    }
    return std::move(changes.list);
}

std::string textOf(const std::vector<FactChange>& changes) {
    std::string text;
    for (auto change = changes.begin(); change != changes.end();) {
        text += text.empty() ? "" : ", ";
        text += nameOf(change->fact);
        if (change->fact == Fact::attributes) {
            const char* separator = " (";
            for (; change != changes.end() && change->fact == Fact::attributes; ++change) {
                text += separator + attributeText(*change);
                separator = ", ";
            }
            text += ')';
            continue;
        }
        if (change->fact == Fact::target) {
            text += ' ' + quotedName(change->before.value_or("")) + " -> " +
                    quotedName(change->after.value_or(""));
        } else if (change->fact != Fact::content) {
            text += ' ' + change->before.value_or("") + " -> " + change->after.value_or("");
        }
        ++change;
    }
    return text;
}

} // namespace Nerix
