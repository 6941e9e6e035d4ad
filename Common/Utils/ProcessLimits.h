#pragma once

namespace Nerix::Common::Utils {

/// Lets the process run under tight limits. Threads get a stack of 1 MiB, whatever the limit for stacks is, from which they would take
/// theirs. Where address space is limited, they share one heap, because a heap of its own reserves 64 MiB. Call it
/// before other threads exist.
void adaptToProcessLimits();

} // namespace Nerix::Common::Utils
