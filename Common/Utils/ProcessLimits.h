#pragma once

namespace Nerix::Common::Utils {

/// Lets the process run under tight limits. Threads get a stack of 1 MiB, whatever the limit for stacks is,
/// from which they would take theirs. If address space is limited, all threads share one heap, because glibc
/// reserves 64 MiB of it per thread's heap. Call it before other threads exist.
void adaptToProcessLimits();

} // namespace Nerix::Common::Utils
