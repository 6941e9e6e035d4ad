#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Directory.h"

#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/RethrowExceptionStream.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntrySteps.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileScanners.h"
#include "ExecutablesLibraries/HashVerifierAPI/Mounts/MountPoints.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

#include <boost/exception/diagnostic_information.hpp>
#include <boost/filesystem/directory.hpp>

#include <algorithm>
#include <deque>
#include <string>

namespace Nerix::FileScanners {

using hash_t = IHashFunction::hash_t;

namespace {

/// The names of the directory's entries, sorted by their bytes. Names, not paths: the directory's path
/// in front of each would not change the order, only cost time and memory. A deque grows without a copy
/// of itself.
std::deque<std::string> sortedNames(const boost::filesystem::path& directory) {
    std::deque<std::string> names;
    for (const boost::filesystem::directory_entry& entry : boost::filesystem::directory_iterator(directory)) {
        const std::string& path = entry.path().native();
        names.push_back(path.substr(path.rfind('/') + 1));
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// One string of its exact size: in a deep tree one lives at every level.
std::string pathInside(const std::string& directory, const std::string& name) {
    const std::size_t separator = directory.back() == '/' ? 0 : 1;
    std::string path;
    path.reserve(directory.size() + separator + name.size());
    path.append(directory).append(separator, '/').append(name);
    return path;
}

/// Logs the exception being handled and rethrows it with the walk's function and line as context. Out of
/// line: its streams would take stack at every level of a deep tree.
[[noreturn, gnu::noinline]] void passOnFailure(const char* function, int line) {
    NERIX_LOG_STREAM(ERR) << "Exception when scanning filesystem: "
                          << boost::current_exception_diagnostic_information(true);
    Common::Utils::rethrowWithContext(function, __FILE__, line, "");
}

} // namespace

Judgement Directory::judge(const FileInput& entry, dev_t rootDevice) const {
    const boost::filesystem::path name = entry.path.filename();
    if (name == "." || name == "..") {
        return Judgement::ignored;
    }
    if (entry.status.st_dev != rootDevice) {
        return Judgement::otherDevice;
    }
    return MountPoints::getInstance().isMountPoint(entry.path.native()) ? Judgement::mountPoint
                                                                        : Judgement::accepted;
}

bool Directory::accept(const FileInput& entry) const {
    HashWorker& worker = HashWorker::getInstance();
    const Judgement judgement = judge(entry, worker.getRoot().status.st_dev);
    if (judgement == Judgement::otherDevice || judgement == Judgement::mountPoint) {
        worker.log(entry, static_cast<hash_t>(judgement));
    }
    return judgement == Judgement::accepted;
}

hash_t Directory::examine(const FileInput& entry, hash_t value, const IHashFunction& function) const {
    return hashMetadata(entry, value, function);
}

hash_t Directory::process(const FileInput& entry, hash_t value, const IHashFunction& function) const {
    value = examine(entry, value, function);
    const std::deque<std::string> names = sortedNames(entry.path);
    constexpr std::size_t longestLine = 21; // twenty digits and the line feed
    std::string list;
    list.reserve(names.size() * longestLine);
    for (const std::string& name : names) {
        try {
            const FileInput child(pathInside(entry.path.native(), name));
            const IFileScanner& scanner = getInstance(child);
            if (scanner.accept(child)) {
                list += std::to_string(scanner.process(child, 0, function));
                list += '\n';
            }
        } catch (...) {
            passOnFailure(__PRETTY_FUNCTION__, __LINE__);
        }
    }
    value = function.apply(value, list);
    HashWorker::getInstance().log(entry, value);
    return value;
}

} // namespace Nerix::FileScanners
