#pragma once

#include <string>

namespace Nerix {

/// The exit status after an error. EXIT_FAILURE stands for a negative result, such as a difference.
constexpr int errorStatus = 2;

/// Prints "NerixHost: MESSAGE" and a line feed to standard error. Control characters in the message are
/// escaped by withoutControls (EscapedText.h), because parts of it may come from untrusted names.
void printError(const std::string& message);

} // namespace Nerix
