#pragma once

#include <ostream>

namespace Nerix {

/// A stream of the caller's that takes a run's scan log: a line for each entry, see ScanRecord.h. The
/// worker's thread alone writes to it, from the start of the run to its end; the stream's exceptions must be
/// off. One that fails loses the rest of the log and nothing else: whoever owns it looks at its state
/// afterwards.
struct ScanLogStream {
    std::ostream* stream;
    bool hasDetails; ///< each record also says what the entry's status held
};

} // namespace Nerix
