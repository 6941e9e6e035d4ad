#pragma once

#include <ostream>

namespace Nerix {

/// A stream to which a run writes its scan log, one record per entry (ScanRecord.h), or null for the system
/// log. During the run only the worker's thread writes to it. The stream's exceptions must be off. If it
/// fails, the rest of the log is lost but the run continues; the caller should check its state afterwards.
struct ScanLogStream {
    std::ostream* stream = nullptr;
    /// Collect facts, which hashes contents twice, and append recordDetails to each record.
    bool hasFacts = false;
};

} // namespace Nerix
