#pragma once

#include <string>

namespace Nerix::Tests {

/// Opening /dev/console in a program that links the fakes opens this file instead, and fails while the text
/// is empty.
std::string& fakeConsolePath();

} // namespace Nerix::Tests
