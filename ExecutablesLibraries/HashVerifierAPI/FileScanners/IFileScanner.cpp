#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"

namespace Nerix {

Judgement IFileScanner::judge(const FileInput&, dev_t) const {
    return Judgement::ignored;
}

IFileScanner::hash_t IFileScanner::examine(const FileInput&, hash_t value, const IHashFunction&) const {
    return value;
}

} // namespace Nerix
