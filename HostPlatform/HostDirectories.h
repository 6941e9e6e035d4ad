#pragma once

#include <filesystem>

/// Where the host platform keeps its state: one directory of the user's own, mode 0700.
///
///     durable    $NERIX_PLATFORM_HOME, else $XDG_STATE_HOME/nerix, else ~/.local/state/nerix
///     volatile   $NERIX_PLATFORM_HOME, else $XDG_RUNTIME_DIR/nerix, else /dev/shm/nerix-<uid>
///
/// Empty variables count as unset, and so do relative paths (except in NERIX_PLATFORM_HOME); ~ is $HOME, else
/// the user's entry in the password database. A setuid or setgid program ignores all variables. All functions
/// create the directory, see OwnDirectory.h, and throw std::system_error naming it when it cannot be created
/// or others could touch it, or when there is no home; the message then also names the remedy,
/// NERIX_PLATFORM_HOME. If that happens for /dev/shm/nerix-<uid>, which another user may have created first,
/// the durable directory is used and a warning logged. Any thread may call.
namespace Nerix::Platform::Host {

std::filesystem::path durableDirectory();
std::filesystem::path logDirectory(); ///< "log" in the durable directory
std::filesystem::path volatileDirectory();

} // namespace Nerix::Platform::Host
