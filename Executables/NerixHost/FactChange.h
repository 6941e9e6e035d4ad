#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/RecordDetails.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Nerix {

/// The facts of an entry that are compared, in the order in which their changes are listed.
enum class Fact { kind, content, attributes, target, owner, group, links, mode, size };

/// Returns the name of the fact in options and output, which is its identifier.
const char* nameOf(Fact fact);

/// Returns the names of all facts.
std::vector<std::string> factNames();

/// Returns the fact of that name, or nullopt.
std::optional<Fact> factNamed(std::string_view name);

using FactSet = std::set<Fact>;

/// A fact of an entry that differs between two trees.
struct FactChange {
    Fact fact;
    std::string attribute;             ///< name of the attribute that differs; empty for other facts
    std::optional<std::string> before; ///< nullopt if the attribute was added
    std::optional<std::string> after;  ///< nullopt if the attribute was removed
};

/// Returns the facts that differ, without those in `ignored`. If the kind differs, returns only that. The
/// size and link count of a directory follow from its entries and its file system and are not compared, nor
/// is the size of a link, which follows from its target.
std::vector<FactChange> changedFacts(const RecordDetails& before, const RecordDetails& after,
                                     const FactSet& ignored);

/// Returns the changes as text, separated by commas. Values of content and attributes are left out.
std::string textOf(const std::vector<FactChange>& changes);

} // namespace Nerix
