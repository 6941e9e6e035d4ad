#pragma once

#include <cstdint>
#include <vector>

namespace Nerix::FileScanners {

/// The sizes of digest steps in order, run-length encoded.
class StepSizes {
public:
    struct Run {
        std::uint32_t bytes;
        std::uint32_t count;
    };

    /// Adds one step.
    void add(std::uint32_t bytes);

    /// Appends `others` and leaves it empty. If it throws std::bad_alloc, nothing has changed.
    void take(StepSizes& others);

    bool isEmpty() const { return m_runs.empty(); }
    const std::vector<Run>& runs() const { return m_runs; }

private:
    void add(Run run);

    std::vector<Run> m_runs;
};

} // namespace Nerix::FileScanners
