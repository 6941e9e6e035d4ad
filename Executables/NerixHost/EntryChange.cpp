#include "Executables/NerixHost/EntryChange.h"

#include <iterator>
#include <sstream>

namespace Nerix {

namespace {

/// The names of the details, in the order of a record.
constexpr const char* factNames[] = {"kind", "owner", "group", "links", "mode", "size"};
constexpr std::size_t links = 3;
constexpr std::size_t size = 5;

std::vector<std::string> factsIn(const std::string& details) {
    std::istringstream words(details);
    return {std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
}

} // namespace

EntryChange changeOf(const ScanLogRecord& before, const ScanLogRecord& after, bool hasReportedChangesBelow) {
    const std::vector<std::string> old = factsIn(before.details);
    const std::vector<std::string> now = factsIn(after.details);
    EntryChange change{
        "changed", after.path, old.size() == std::size(factNames) && now.size() == old.size(), {}};
    for (std::size_t fact = 0; change.hasDetails && fact != old.size(); ++fact) {
        const bool followsFromEntries = hasReportedChangesBelow && (fact == links || fact == size);
        if (old[fact] != now[fact] && !followsFromEntries) {
            change.facts.push_back({factNames[fact], old[fact], now[fact]});
        }
    }
    return change;
}

} // namespace Nerix
