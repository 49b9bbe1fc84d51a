#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace vantry {

/// What the text of "user-dirs.dirs" says, by its names, such as "XDG_DOWNLOAD_DIR": see user-dirs.dirs(5). Relative
/// values and lines of another form are left out; of two lines for one folder the last one counts.
[[nodiscard]] std::map<std::string, std::filesystem::path> userFolders(std::string_view text,
                                                                       const std::filesystem::path& home);

/// The download folder that this text names: "Downloads" in `home` if there is none, or if the one named is, or
/// contains, the home folder or another of the user's folders, by its name or where links lead. Waits for no server.
[[nodiscard]] std::filesystem::path downloadFolder(std::string_view text, const std::filesystem::path& home);

} // namespace vantry
