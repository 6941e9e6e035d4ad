#pragma once

#include <ostream>

namespace Nerix {

/// A caller-supplied stream for the scan log, one line per entry; see ScanRecord.h. During the run only the
/// worker's thread writes to it. The stream's exceptions must be off. If it fails, the rest of the log is
/// lost but the run continues; the caller should check its state afterwards.
struct ScanLogStream {
    std::ostream* stream;
    bool hasFacts; ///< append recordDetails to each record
};

} // namespace Nerix
