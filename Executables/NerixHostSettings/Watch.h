#pragma once

namespace Nerix {

/// Shows status, progress and result of the verification as the settings store changes, until a run ends or
/// is killed; waits for one when none is active. On a terminal one line is redrawn, elsewhere each change is
/// a line. Ctrl-C ends it at once. Throws std::runtime_error when the store cannot be read,
/// std::ios_base::failure when standard output cannot be written and its exceptions are on.
void watch();

} // namespace Nerix
