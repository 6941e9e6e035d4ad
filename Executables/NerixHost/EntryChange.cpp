#include "Executables/NerixHost/EntryChange.h"

#include <iterator>
#include <sstream>

namespace Nerix {

namespace {

/// The names of the details, in the order of a record.
constexpr const char* detailNames[] = {"kind", "owner", "group", "links", "mode", "size"};
constexpr std::size_t linksIndex = 3;
constexpr std::size_t sizeIndex = 5;

std::vector<std::string> wordsIn(const std::string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
}

} // namespace

EntryChange changeOf(const ScanLogRecord& before, const ScanLogRecord& after, bool hasReportedChangesBelow) {
    const std::vector<std::string> old = wordsIn(before.details);
    const std::vector<std::string> now = wordsIn(after.details);
    const bool hasDetails = old.size() == std::size(detailNames) && now.size() == std::size(detailNames);
    EntryChange change{"changed", after.path, hasDetails, {}};
    for (std::size_t index = 0; hasDetails && index != old.size(); ++index) {
        const bool followsFromEntries =
            hasReportedChangesBelow && (index == linksIndex || index == sizeIndex);
        if (old[index] != now[index] && !followsFromEntries) {
            change.details.push_back({detailNames[index], old[index], now[index]});
        }
    }
    return change;
}

} // namespace Nerix
