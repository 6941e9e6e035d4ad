#pragma once

namespace Nerix {

struct FileInput;
class IFileScanner;

namespace FileScanners {

class BlockDevice;
class CharDevice;
class Directory;
class LocalPipe;
class LocalSocket;
class Regular;
class SymbolicLink;
class Unknown;

/// The scanners, one for each kind of entry. They live until the process ends.
extern const Regular SCANNER_REGULAR;
extern const Directory SCANNER_DIRECTORY;
extern const BlockDevice SCANNER_BLOCK_DEVICE;
extern const CharDevice SCANNER_CHAR_DEVICE;
extern const LocalPipe SCANNER_PIPE;
extern const SymbolicLink SCANNER_LINK;
extern const LocalSocket SCANNER_SOCKET;
extern const Unknown SCANNER_UNKNOWN;

/// Returns the scanner for the kind of entry that lstat finds at the path now; the status in the FileInput is
/// not used. The scanner lives until the process ends. Throws GenericException "access error: can't LSTAT
/// file: " + quoted path.
const IFileScanner& getInstance(const FileInput& entry);

} // namespace FileScanners

} // namespace Nerix
