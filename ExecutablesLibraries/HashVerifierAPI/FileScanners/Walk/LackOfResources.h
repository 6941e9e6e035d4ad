#pragma once

namespace Nerix::FileScanners {

/// Returns true if the exception being handled may come from a lack of memory or file descriptors:
/// std::bad_alloc, a failure of the crypto library, which does not distinguish a lack of memory from other
/// failures, and ENOMEM, EMFILE and ENFILE of the system. Call it in an exception handler.
bool isLackOfResources();

} // namespace Nerix::FileScanners
