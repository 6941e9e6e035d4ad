#pragma once

#include <filesystem>

/// Where the host platform keeps its state: one directory of the user's own, mode 0700.
///
///     durable    $NERIX_PLATFORM_HOME, else $XDG_STATE_HOME/nerix, else ~/.local/state/nerix
///     volatile   $NERIX_PLATFORM_HOME, else $XDG_RUNTIME_DIR/nerix, else /dev/shm/nerix-<uid>
///
/// Empty variables count as unset, and so do relative ones, NERIX_PLATFORM_HOME aside; ~ is $HOME, else the
/// user's entry in the password database. Both functions make the directory and throw std::system_error
/// naming it when it cannot be made, when there is no home, or when the one in /dev/shm, where everybody may
/// write, is a link or another user's. Any thread may call.
namespace Nerix::Platform::Host {

std::filesystem::path durableDirectory();
std::filesystem::path volatileDirectory();

} // namespace Nerix::Platform::Host
