#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/LeafScanner.h"

#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

namespace Nerix::FileScanners {

IFileScanner::hash_t LeafScanner::process(const FileInput& entry, hash_t value,
                                          const IHashFunction& function) const {
    value = examine(entry, value, function);
    HashWorker::getInstance().log(entry, value);
    return value;
}

} // namespace Nerix::FileScanners
