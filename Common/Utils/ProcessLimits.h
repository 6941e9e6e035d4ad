#pragma once

namespace Nerix::Common::Utils {

/// Adapts the process to tight resource limits. New threads get a stack of 1 MiB; otherwise the stack limit
/// would determine its size. There are at most as many heaps as cores, and at most 8, because memory freed in
/// one heap cannot be reused by threads that allocate from another. If address space is limited, all threads
/// share one heap, because glibc reserves 64 MiB of address space per heap. Call it before other threads
/// exist.
void adaptToProcessLimits();

} // namespace Nerix::Common::Utils
