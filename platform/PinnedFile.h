#pragma once

#include "base/UniqueFd.h"
#include "platform/FileFingerprint.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>

namespace vantry {

/// Why something was not pinned. `special` is neither a file nor a folder nor a link; `unavailable` is every other
/// reason, for instance a right or a free descriptor that is missing.
enum class PinFailure { missing, link, special, unavailable };

/// Where the name of a pinned file leads. `missing` is also a name that cannot be looked at.
enum class PinnedPlace { unchanged, folderMoved, missing, link, otherItem };

/// What the system says about a pinned folder. An absent field is one that it does not tell.
struct PinnedFolderFacts {
    std::optional<bool> isDirectory;
    std::optional<bool> isSymbolicLink;
    std::optional<std::string> volumeIdentifier; ///< as in a `FileFingerprint`

    bool operator==(const PinnedFolderFacts&) const = default;
};

/// What the system says about a pinned file. An absent field is one that it does not tell.
struct PinnedFileFacts {
    std::optional<bool> isRegularFile;
    std::optional<bool> isSymbolicLink;
    std::optional<bool> isPackage;              ///< a folder shown as a file; on Linux nothing is
    std::optional<bool> isUbiquitousItem;       ///< kept in a cloud by the system; on Linux nothing is
    std::optional<std::int64_t> contentBytes;   ///< its length
    std::optional<std::int64_t> allocatedBytes; ///< of its contents
    std::optional<std::int64_t> totalAllocated; ///< bytes; with its other forks, where the system has them
    std::optional<uid_t> owner;
    FileFingerprint fingerprint;

    bool operator==(const PinnedFileFacts&) const = default;
};

// A pin holds a thing by descriptor, so that everything that is asked of it is about that one thing, whatever its name
// leads to meanwhile. Pins follow no link, change nothing, and on Linux need no permission on what they hold and answer
// from cached attributes where a server would have to be asked. Blocking; any thread, one at a time.

/// A folder, and the absolute path at which it was found.
class PinnedFolder {
public:
    /// Fails with `link` when any component of `path` is one.
    [[nodiscard]] static std::expected<std::shared_ptr<const PinnedFolder>, PinFailure>
    open(const std::filesystem::path& path);

    /// For calls that take a name in a folder. On Linux opened for its path alone.
    [[nodiscard]] int descriptor() const { return descriptor_.get(); }
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    /// Whether the path leads to this folder still, by no link.
    [[nodiscard]] bool isInPlace() const;
    /// Absent when they cannot be read.
    [[nodiscard]] std::optional<PinnedFolderFacts> facts() const;

private:
    PinnedFolder(std::filesystem::path path, UniqueFd descriptor);

    std::filesystem::path path_;
    UniqueFd descriptor_;
};

/// A file or folder directly in a pinned folder, and the name under which it was found.
class PinnedFile {
public:
    [[nodiscard]] static std::expected<PinnedFile, PinFailure> open(std::shared_ptr<const PinnedFolder> folder,
                                                                    const std::string& name);

    /// On Linux opened for its path alone, on macOS for events alone.
    [[nodiscard]] int descriptor() const { return descriptor_.get(); }
    [[nodiscard]] const PinnedFolder& folder() const { return *folder_; }
    [[nodiscard]] const std::string& name() const { return name_; }

    /// Absent when they cannot be read. On macOS also when the path leads elsewhere meanwhile.
    [[nodiscard]] std::optional<PinnedFileFacts> facts() const;

    /// Whether the folder is in place and the name in it leads to this item. As true as an answer can be that another
    /// process may outdate at any moment: who moves the name has to look at what arrived.
    [[nodiscard]] PinnedPlace place() const;
    /// Where `name` in the folder `folder`, a descriptor, leads; never `folderMoved`. Tells the item also after it has
    /// been renamed.
    [[nodiscard]] PinnedPlace placeIn(int folder, const std::string& name) const;

private:
    PinnedFile(std::shared_ptr<const PinnedFolder> folder, std::string name, UniqueFd descriptor);

    std::shared_ptr<const PinnedFolder> folder_;
    std::string name_;
    UniqueFd descriptor_;
};

} // namespace vantry
