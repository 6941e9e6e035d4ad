#include "HostPlatform/StateInMemory.h"

#include <atomic>

namespace Nerix::Platform::Host {

namespace {

std::atomic<bool> isInMemory{false};

}

void keepStateInMemory() {
    isInMemory = true;
}

bool isStateInMemory() {
    return isInMemory;
}

} // namespace Nerix::Platform::Host
