#pragma once

namespace Nerix {

struct FileInput;
class IFileScanner;

namespace FileScanners {

/// The scanner for the kind of entry that lstat finds at the path now; the status in the FileInput is not
/// used. It lives until the process ends. Throws GenericException "access error: can't LSTAT file: " +
/// quoted path.
const IFileScanner& getInstance(const FileInput& entry);

} // namespace FileScanners

} // namespace Nerix
