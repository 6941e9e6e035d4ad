#pragma once

namespace Nerix {

/// Shows status, progress and result of the verification as the settings store changes, until a run ends or
/// is killed; waits for one when none is active. On a terminal one line is redrawn, elsewhere there is at
/// most a line a second; isJson: as JSON objects. INT and TERM end it, and the process by that signal, once
/// the terminal is in order. Returns the exit status: 0, or 1 when the run gave no value. Throws
/// std::runtime_error when the store cannot be read or standard output cannot be written.
int watch(bool isJson);

} // namespace Nerix
