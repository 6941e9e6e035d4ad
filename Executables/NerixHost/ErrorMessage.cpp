#include "Executables/NerixHost/ErrorMessage.h"

#include "Common/Base/EscapedText.h"

#include <iostream>

namespace Nerix {

void printError(const std::string& message) {
    std::cerr << "NerixHost: " << Common::withoutControls(message) << std::endl;
}

} // namespace Nerix
