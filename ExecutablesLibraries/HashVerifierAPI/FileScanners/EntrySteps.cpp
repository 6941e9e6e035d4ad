#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntrySteps.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/AccessError.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/xattr.h>

namespace Nerix::FileScanners {

using Common::Utils::errinfo_stream;
using hash_t = IHashFunction::hash_t;

namespace {

struct ModeToken {
    mode_t bit;
    std::string_view whenSet;
    std::string_view whenClear;
};

constexpr ModeToken permissionTokens[] = {
    {S_IRUSR, "UR", "ur"}, {S_IWUSR, "UW", "uw"}, {S_IXUSR, "UX", "ux"},
    {S_IRGRP, "GR", "gr"}, {S_IWGRP, "GW", "gw"}, {S_IXGRP, "GX", "gx"},
    {S_IROTH, "OR", "or"}, {S_IWOTH, "OW", "ow"}, {S_IXOTH, "OX", "ox"},
};
constexpr ModeToken specialTokens[] = {{S_ISUID, "SU", "su"}, {S_ISGID, "SG", "sg"}, {S_ISVTX, "SB", "sb"}};

template <std::size_t count>
void appendTokens(std::string& text, const ModeToken (&tokens)[count], mode_t mode) {
    for (const ModeToken& token : tokens) {
        text += (mode & token.bit) != 0 ? token.whenSet : token.whenClear;
    }
    text += '\n';
}

/// The unparsed list of an entry's attribute names: the announced size and the bytes delivered.
struct NameList {
    std::size_t announced = 0;
    std::vector<char> delivered;

    bool isAsAnnounced() const { return delivered.size() == announced; }
};

NameList readNameList(const FileInput& entry) {
    NameList list;
    const auto checked = [&](ssize_t size) {
        if (size < 0) {
            BOOST_THROW_EXCEPTION(accessError("read the attributes of", entry.path, errno) << errinfo_stream(
                                      "access error: can't read xattrs for file: ", entry.path));
        }
        return static_cast<std::size_t>(size);
    };
    const ssize_t announced = ::llistxattr(entry.path.c_str(), nullptr, 0);
    if (announced < 0 && errno == EOPNOTSUPP) {
        return list; // a file system without attributes
    }
    list.announced = checked(announced);
    if (list.announced != 0) {
        list.delivered.resize(list.announced);
        list.delivered.resize(
            checked(::llistxattr(entry.path.c_str(), list.delivered.data(), list.announced)));
    }
    return list;
}

} // namespace

void listxattr(const FileInput& entry, std::vector<std::string>& names) {
    NameList list = readNameList(entry);
    if (!list.isAsAnnounced()) {
        // Overlay file systems count names that they hide, always the same ones. Any other difference means
        // that the attributes have changed.
        const NameList first = std::move(list);
        list = readNameList(entry);
        if (list.announced != first.announced || list.delivered.size() != first.delivered.size()) {
            BOOST_THROW_EXCEPTION(accessError("read the attributes of", entry.path, 0) << errinfo_stream(
                                      "concurrent access: can't read xattrs for file: ", entry.path));
        }
    }
    const std::vector<char>& buffer = list.delivered;
    for (auto name = buffer.begin(); name != buffer.end();) {
        const auto end = std::find(name, buffer.end(), '\0');
        names.emplace_back(name, end);
        name = end == buffer.end() ? end : end + 1;
    }
    std::sort(names.begin(), names.end());
}

std::vector<char> readxattr(const FileInput& entry, const std::string& name) {
    const ssize_t size = ::lgetxattr(entry.path.c_str(), name.c_str(), nullptr, 0);
    if (size < 0) {
        BOOST_THROW_EXCEPTION(accessError("read the attributes of", entry.path, errno) << errinfo_stream(
                                  "access error: can't read xattribute", name, " for file: ", entry.path));
    }
    // One byte more than is read, because data() of an empty vector may be null.
    std::vector<char> value(static_cast<std::size_t>(size) + 1);
    if (::lgetxattr(entry.path.c_str(), name.c_str(), value.data(), static_cast<std::size_t>(size)) != size) {
        BOOST_THROW_EXCEPTION(
            accessError("read the attributes of", entry.path, 0)
            << errinfo_stream("concurrent access: can't read xattribute", name, " for file: ", entry.path));
    }
    value.pop_back();
    return value;
}

std::string statusText(const FileInput& entry) {
    const struct stat& status = entry.status;
    std::string text;
    text.reserve(64); // three numbers of up to ten digits, 24 characters of tokens, five line feeds
    text += std::to_string(status.st_uid);
    text += '\n';
    text += std::to_string(status.st_gid);
    text += '\n';
    text += std::to_string(status.st_nlink);
    text += '\n';
    appendTokens(text, permissionTokens, status.st_mode);
    appendTokens(text, specialTokens, status.st_mode);
    return text;
}

hash_t hashMetadata(const FileInput& entry, hash_t value, const IHashFunction& function) {
    std::string buffer;
    value = function.apply(value, HashWorker::getInstance().hashedPath(entry, buffer));
    value = hashstat(entry, value, function);
    return hashxtattr(entry, value, function);
}

hash_t hashstat(const FileInput& entry, hash_t value, const IHashFunction& function) {
    return function.apply(value, statusText(entry));
}

hash_t hashxtattr(const FileInput& entry, hash_t value, const IHashFunction& function) {
    std::vector<std::string> names;
    listxattr(entry, names);
    for (const std::string& name : names) {
        const std::vector<char> content = readxattr(entry, name);
        value = function.apply(value, name);
        value = function.apply(value, std::string(attributeSeparator));
        value = function.apply(value, static_cast<unsigned int>(content.size()), content.data());
    }
    return value;
}

} // namespace Nerix::FileScanners
