#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileScanners.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Directory.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Regular.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/SpecialFiles.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/SymbolicLink.h"

namespace Nerix::FileScanners {

const Regular SCANNER_REGULAR;
const Directory SCANNER_DIRECTORY;
const BlockDevice SCANNER_BLOCK_DEVICE;
const CharDevice SCANNER_CHAR_DEVICE;
const LocalPipe SCANNER_PIPE;
const SymbolicLink SCANNER_LINK;
const LocalSocket SCANNER_SOCKET;
const Unknown SCANNER_UNKNOWN;

const IFileScanner& getInstance(const FileInput& entry) {
    switch (statusOf(entry.path).st_mode & S_IFMT) {
    case S_IFREG:
        return SCANNER_REGULAR;
    case S_IFDIR:
        return SCANNER_DIRECTORY;
    case S_IFBLK:
        return SCANNER_BLOCK_DEVICE;
    case S_IFCHR:
        return SCANNER_CHAR_DEVICE;
    case S_IFIFO:
        return SCANNER_PIPE;
    case S_IFLNK:
        return SCANNER_LINK;
    case S_IFSOCK:
        return SCANNER_SOCKET;
    default:
        return SCANNER_UNKNOWN;
    }
}

} // namespace Nerix::FileScanners
