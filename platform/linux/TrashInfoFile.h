#pragma once

#include "base/UniqueFd.h"

#include <expected>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace vantry {

/// The info file of an item of the Trash, written by this process before the item arrives, and held open so that it is
/// not mistaken for the info file that another program gave the same name.
class TrashInfoFile {
public:
    /// Writes "NAME.trashinfo" for the item `name` to `folder`, a descriptor that has to outlive what is returned, and
    /// returns when it is on the disk. An error is an errno, `EEXIST` when there is an info file of that name; nothing
    /// is left then.
    [[nodiscard]] static std::expected<TrashInfoFile, int> write(int folder, const std::string& name,
                                                                 std::string_view text);

    [[nodiscard]] const std::string& itemName() const { return itemName_; }

    /// Whether its name leads to it still.
    [[nodiscard]] bool isInPlace() const;
    /// Deletes it if it is in place. It must belong to no item by then.
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
