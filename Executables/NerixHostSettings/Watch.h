#pragma once

namespace Nerix {

/// Draws status, progress and result of the verification in the settings store as they change, and ends when
/// a run ends, also when it is killed; waits for one when none is active. On a terminal everything is one
/// line that is redrawn, elsewhere each change is a line of its own. Ctrl-C ends it at once. Throws
/// std::runtime_error when the store cannot be read, std::ios_base::failure when standard output cannot be
/// written and its exceptions are on.
void watch();

} // namespace Nerix
