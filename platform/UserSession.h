#pragma once

#include "base/Result.h"

#include <filesystem>
#include <string>

namespace vantry {

/// The user's home folder: `$HOME` when it is absolute, else what the user database says. Any thread.
[[nodiscard]] Result<std::filesystem::path> homeFolder();

/// Where this user's downloads go: on Linux what "user-dirs.dirs" says, see platform/linux/UserFolders.h; else
/// "Downloads" in `home`. The folder may be missing. Blocking; any thread.
[[nodiscard]] std::filesystem::path downloadFolder(const std::filesystem::path& home);

/// `folder`, if it belongs to this user and is open to nobody else; otherwise, and for a link, it is no place for a
/// socket. Any thread.
[[nodiscard]] Result<std::filesystem::path> privateFolder(std::filesystem::path folder);

/// A folder of this user alone for sockets and locks, which does not survive a restart: `$XDG_RUNTIME_DIR`, else
/// "/tmp/ombrel-" and the user's number, made 0700 when missing; on macOS the user's temporary folder. Fails unless
/// it is private, see `privateFolder`. Any thread.
[[nodiscard]] Result<std::filesystem::path> userRuntimeFolder();

/// Where short-lived files go: `$TMPDIR` when it is absolute, else "/tmp", on macOS the user's temporary
/// folder. The folder may be missing. Any thread.
[[nodiscard]] std::filesystem::path temporaryFolder();

/// A name that differs between the graphical sessions of one user: the X11 display, else the Wayland one; empty on
/// systems that allow a user only one session. Any thread.
[[nodiscard]] std::string graphicalSessionName();

} // namespace vantry
