#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

namespace Nerix {

/// While it lives, the digest steps of the worker's thread are the run's progress.
class RunSteps final : public HashFunctions::StepObserver {
public:
    explicit RunSteps(HashWorker& worker) : m_worker(worker) {}

    /// Throws what HashWorker::log throws.
    void onStep(unsigned long long bytes) override { m_worker.log(bytes); }

private:
    HashWorker& m_worker;
};

} // namespace Nerix
