#pragma once

#include <cstddef>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>

namespace vantry {

// What the freedesktop.org Trash specification 1.0 says of an item in the Trash: "files/NAME", and
// "info/NAME.trashinfo", which tells where the item came from. Pure; any thread.

constexpr std::string_view trashInfoSuffix = ".trashinfo";

/// What the info file holds. `origin` is absolute, its bytes need not be UTF-8; `deleted` is local time.
[[nodiscard]] std::string trashInfoText(const std::filesystem::path& origin, const std::tm& deleted);

/// A name in the Trash for an item called `name`, of `limit` bytes at most: that name itself, or with `tag` before its
/// extension when there is one ("name.2.txt"). What is too long loses the end of its stem, in UTF-8 between two
/// characters.
[[nodiscard]] std::string trashName(std::string_view name, std::string_view tag, std::size_t limit);

} // namespace vantry
