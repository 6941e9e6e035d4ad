#include "Executables/NerixHost/ErrorMessage.h"

#include "HostPlatform/EscapedText.h"

#include <iostream>

namespace Nerix {

void printError(const std::string& message) {
    std::cerr << "NerixHost: " << Platform::Host::withoutControls(message) << std::endl;
}

} // namespace Nerix
