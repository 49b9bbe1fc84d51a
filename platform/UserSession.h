#pragma once

#include "base/Result.h"

#include <filesystem>
#include <string>

namespace vantry {

/// The user's home folder: `$HOME` when it is absolute, else what the user database says. Any thread.
[[nodiscard]] Result<std::filesystem::path> homeFolder();

/// A folder of this user alone for sockets and locks, gone after a restart at the latest: `$XDG_RUNTIME_DIR`, else
/// "/tmp/ombrel-" and the user's number, made 0700 when missing; on macOS the user's temporary folder. Fails when it is
/// somebody else's, a link, or open to others. Any thread.
[[nodiscard]] Result<std::filesystem::path> userRuntimeFolder();

/// Where files go that live for a moment: `$TMPDIR` when it is absolute, else "/tmp", on macOS the user's temporary
/// folder. It may be missing. Any thread.
[[nodiscard]] std::filesystem::path temporaryFolder();

/// Tells the graphical sessions of one user apart: the X11 display, else the Wayland one; empty where a user has one
/// session only. Any thread.
[[nodiscard]] std::string graphicalSessionName();

} // namespace vantry
