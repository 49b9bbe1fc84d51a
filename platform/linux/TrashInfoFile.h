#pragma once

#include "base/UniqueFd.h"

#include <cstddef>
#include <ctime>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace vantry {

// Names and info files of items in the Trash (freedesktop.org Trash specification 1.0): the item is "files/NAME", and
// "info/NAME.trashinfo" records its origin. Pure; any thread.

constexpr std::string_view trashInfoSuffix = ".trashinfo";

/// The contents of the info file. `origin` is absolute and need not be UTF-8; `deleted` is local time.
[[nodiscard]] std::string trashInfoText(const std::filesystem::path& origin, const std::tm& deleted);

/// A name in the Trash for an item called `name`, at most `limit` bytes long: that name itself or, with a tag, the name
/// with `tag` before its extension ("name.2.txt"). A stem that is too long is cut, never within a UTF-8 character.
[[nodiscard]] std::string trashName(std::string_view name, std::string_view tag, std::size_t limit);

/// The info file of an item in the Trash. It is written before the item arrives, and held open so that another
/// program's info file of the same name is not mistaken for it.
class TrashInfoFile {
public:
    /// Writes "NAME.trashinfo" for the item `name` to `folder`, a descriptor that must outlive the result, and syncs
    /// it. The error is an errno, `EEXIST` when there is an info file of that name; nothing is left behind.
    [[nodiscard]] static std::expected<TrashInfoFile, int> write(int folder, const std::string& name,
                                                                 std::string_view text);

    [[nodiscard]] const std::string& itemName() const { return itemName_; }

    /// Whether its name still leads to it.
    [[nodiscard]] bool isInPlace() const;
    /// Deletes it if it is in place. Call it only when no item needs it.
    void remove() const;

private:
    TrashInfoFile(int folder, std::string itemName, UniqueFd info, const struct stat& facts);
    [[nodiscard]] std::string name() const;

    int folder_;
    std::string itemName_;
    UniqueFd info_;
    dev_t device_;
    ino_t number_;
};

} // namespace vantry
