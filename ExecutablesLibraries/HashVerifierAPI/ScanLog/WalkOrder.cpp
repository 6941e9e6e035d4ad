#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/WalkOrder.h"

#include <algorithm>

namespace Nerix {

namespace {

/// Returns the path, but "" for "/", so that every path below begins with it and a slash.
std::string_view withoutSlash(std::string_view path) {
    return path == "/" ? std::string_view() : path;
}

/// Returns the sort key of a path byte: '/' (the end of a name) sorts before every other byte.
int rank(char character) {
    return character == '/' ? 0 : static_cast<unsigned char>(character) + 1;
}

} // namespace

int compareInWalkOrder(std::string_view a, std::string_view b) {
    a = withoutSlash(a);
    b = withoutSlash(b);
    const std::size_t shorter = std::min(a.size(), b.size());
    const auto at =
        static_cast<std::size_t>(std::mismatch(a.begin(), a.begin() + shorter, b.begin()).first - a.begin());
    if (at < shorter) {
        return rank(a[at]) - rank(b[at]);
    }
    if (a.size() == b.size()) {
        return 0;
    }
    // One begins with the other: a directory comes after what is below it, a shorter name before a longer
    // one.
    const bool isDirectory = (a.size() > b.size() ? a : b)[shorter] == '/';
    return (a.size() > b.size()) == isDirectory ? -1 : 1;
}

bool isBelow(std::string_view entry, std::string_view directory) {
    directory = withoutSlash(directory);
    return entry.size() > directory.size() + 1 && entry[directory.size()] == '/' &&
           entry.compare(0, directory.size(), directory) == 0;
}

} // namespace Nerix
