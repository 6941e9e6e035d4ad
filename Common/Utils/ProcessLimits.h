#pragma once

namespace Nerix::Common::Utils {

/// Adapts the process to tight resource limits. New threads get a stack of 1 MiB; otherwise the stack limit
/// would determine its size. There are at most as many heaps as cores, because what one thread frees is of no
/// use to others in another heap. If address space is limited, all threads share one heap, because glibc
/// reserves 64 MiB of address space per heap. Call it before other threads exist.
void adaptToProcessLimits();

} // namespace Nerix::Common::Utils
