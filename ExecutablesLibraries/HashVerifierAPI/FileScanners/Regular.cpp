#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Regular.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/ContentStream.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntrySteps.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"

namespace Nerix::FileScanners {

using hash_t = IHashFunction::hash_t;

hash_t Regular::examine(const FileInput& entry, hash_t value, const IHashFunction& function) const {
    value = hashMetadata(entry, value, function);
    const ContentStream stream(entry.path, static_cast<std::uint64_t>(entry.status.st_size));
    value = function.apply(value, stream.get());
    stream.content().throwIfReplaced();
    if (stream.content().readError() != 0) {
        HashFunctions::StepObserver::reportReadError(stream.content().readError());
    }
    return value;
}

} // namespace Nerix::FileScanners
