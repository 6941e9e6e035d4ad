#pragma once

#include <filesystem>

/// Returns the directories in which the host platform keeps its state. They belong to the user and are
/// created with mode 0700.
///
///     durable    $NERIX_PLATFORM_HOME, else $XDG_STATE_HOME/nerix, else ~/.local/state/nerix
///     volatile   $NERIX_PLATFORM_HOME, else $XDG_RUNTIME_DIR/nerix, else /dev/shm/nerix-<uid>
///
/// Empty variables count as unset, and so do relative paths (except in NERIX_PLATFORM_HOME); ~ is $HOME, else
/// the user's entry in the password database. A setuid or setgid program ignores all variables. All functions
/// create the directory, see OwnDirectory.h. They throw std::system_error, which names the directory, if it
/// cannot be created, if other users could write to or replace it, or if there is no home. For a durable
/// directory that NERIX_PLATFORM_HOME did not choose, the message suggests setting that variable. If that
/// happens for /dev/shm/nerix-<uid>, which another user may have created first, the durable directory is used
/// and a warning logged. Any thread may call.
namespace Nerix::Platform::Host {

std::filesystem::path durableDirectory();
std::filesystem::path logDirectory(); ///< "log" in the durable directory
std::filesystem::path volatileDirectory();

} // namespace Nerix::Platform::Host
