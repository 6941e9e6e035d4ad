#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Directory.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntrySteps.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Walk.h"
#include "ExecutablesLibraries/HashVerifierAPI/Mounts/MountPoints.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

namespace Nerix::FileScanners {

using hash_t = IHashFunction::hash_t;

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
    return Walk(*this, function, {__PRETTY_FUNCTION__, __FILE__, __LINE__}, entry, value).run();
}

} // namespace Nerix::FileScanners
