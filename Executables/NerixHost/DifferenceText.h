#pragma once

#include "Executables/NerixHost/TreeComparison.h"

#include <string>

namespace Nerix {

/// Returns the word for the kind: changed, moved, removed or added.
const char* wordOf(Difference::Kind kind);

/// Returns a path of EntryReader without the slash in front; "." for the root.
std::string plainPath(const std::string& path);

/// Returns the difference as a line without its line feed. isColored: the first word has a color.
std::string lineOf(const Difference& difference, bool isColored);

/// Returns one line that counts the differences and lists what was not compared.
std::string totalsOf(const ComparisonResult& result, const ComparisonRules& rules);

/// Returns the lines of --summary: the number of entries that differ in each way below each directory of the
/// first two levels, the largest first, and the number of bytes removed and added.
std::string summaryOf(const ComparisonResult& result);

} // namespace Nerix
