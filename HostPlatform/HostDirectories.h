#pragma once

#include <filesystem>

/// Returns the directories of the host platform's state, which belong to the user.
///
///     durable    $NERIX_PLATFORM_HOME, or $XDG_STATE_HOME/nerix, or ~/.local/state/nerix
///     volatile   $NERIX_PLATFORM_HOME, or $XDG_RUNTIME_DIR/nerix, or /dev/shm/nerix-<uid>
///
/// A variable counts as unset if it is empty or, except for NERIX_PLATFORM_HOME, a relative path. ~ is $HOME
/// or the home directory in the password database. A setuid or setgid program ignores all variables.
///
/// All functions create the directory, with mode 0700 (see PrivateDirectory.h). They throw std::system_error
/// if it cannot be created, if other users could write to or replace it, or if there is no home directory.
/// The message names the directory and, except for "log" itself, suggests setting NERIX_PLATFORM_HOME if that
/// variable is not set. If /dev/shm/nerix-<uid> is unusable, the durable directory is used instead and a
/// warning logged. Thread-safe.
namespace Nerix::Platform::Host {

std::filesystem::path durableDirectory();
std::filesystem::path logDirectory(); ///< "log" in the durable directory
std::filesystem::path volatileDirectory();

} // namespace Nerix::Platform::Host
