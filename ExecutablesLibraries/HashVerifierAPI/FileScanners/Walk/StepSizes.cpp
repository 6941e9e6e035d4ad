#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/StepSizes.h"

#include <limits>

namespace Nerix::FileScanners {

void StepSizes::add(std::uint32_t bytes) {
    add({bytes, 1});
}

void StepSizes::add(Run run) {
    constexpr std::uint32_t maxCount = std::numeric_limits<std::uint32_t>::max();
    if (!m_runs.empty() && m_runs.back().bytes == run.bytes && run.count <= maxCount - m_runs.back().count) {
        m_runs.back().count += run.count;
    } else {
        m_runs.push_back(run);
    }
}

void StepSizes::take(StepSizes& others) {
    if (m_runs.empty()) {
        m_runs.swap(others.m_runs);
        return;
    }
    m_runs.reserve(m_runs.size() + others.m_runs.size());
    for (const Run& run : others.m_runs) {
        add(run);
    }
    others.m_runs.clear();
}

} // namespace Nerix::FileScanners
