#pragma once

#include <string>

namespace Nerix {

/// Prints "NerixHost: MESSAGE" and a line feed to standard error. Control characters in the message are
/// escaped by withoutControls (EscapedText.h), because parts of it may come from untrusted names.
void printError(const std::string& message);

} // namespace Nerix
