#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/LeafScanner.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FactSteps.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

namespace Nerix::FileScanners {

IFileScanner::hash_t LeafScanner::process(const FileInput& entry, hash_t value,
                                          const IHashFunction& function) const {
    HashWorker& worker = HashWorker::getInstance();
    if (worker.recordsFacts()) {
        EntryFacts facts;
        value = examineWithFacts(entry, remainder(), value, function, facts);
        worker.log(entry, value, &facts);
    } else {
        value = examine(entry, value, function);
        worker.log(entry, value);
    }
    return value;
}

} // namespace Nerix::FileScanners
