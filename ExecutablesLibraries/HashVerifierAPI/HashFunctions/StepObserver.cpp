#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"

namespace Nerix::HashFunctions {

namespace {

thread_local StepObserver* current = nullptr;

} // namespace

StepObserver::StepObserver() : m_former(current) {
    current = this;
}

StepObserver::~StepObserver() {
    current = m_former;
}

void StepObserver::report(unsigned long long bytes) {
    if (current != nullptr) {
        current->onStep(bytes);
    }
}

} // namespace Nerix::HashFunctions
