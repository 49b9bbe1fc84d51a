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
#include <utility>

namespace vantry {

/// Why something was not pinned. `special` is neither a file nor a folder nor a link; `unavailable` is every other
/// reason, such as a missing permission or no free descriptor.
enum class PinFailure { missing, link, special, unavailable };

/// Where the name of a pinned file leads. `missing` also means that the name cannot be looked up.
enum class PinnedPlace { unchanged, folderMoved, missing, link, otherItem };

/// What the system says about a pinned folder. A field is absent when the system does not provide it.
struct PinnedFolderFacts {
    std::optional<bool> isDirectory;
    std::optional<bool> isSymbolicLink;
    std::optional<std::string> volumeIdentifier; ///< as in a `FileFingerprint`

    bool operator==(const PinnedFolderFacts&) const = default;
};

/// What the system says about a pinned file. A field is absent when the system does not provide it.
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

// A pin holds an item by a descriptor, so that every answer is about that item, whatever its name leads to by then.
// Pins follow no link and change nothing. On Linux they need no permission on the item, and use cached attributes where
// a server would have to be asked. Blocking; any thread, one at a time.

/// A folder, and the absolute path at which it was found.
class PinnedFolder {
public:
    /// Fails with `link` when any component of `path` is a link.
    [[nodiscard]] static std::expected<std::shared_ptr<const PinnedFolder>, PinFailure>
    open(const std::filesystem::path& path);

    /// For calls that take a name in a folder. On Linux opened with O_PATH.
    [[nodiscard]] int descriptor() const { return descriptor_.get(); }
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    /// Whether the path still leads to this folder, without a link.
    [[nodiscard]] bool isInPlace() const;
    /// Absent when they cannot be read.
    [[nodiscard]] std::optional<PinnedFolderFacts> facts() const;

private:
    PinnedFolder(std::filesystem::path path, UniqueFd descriptor)
        : path_(std::move(path)),
          descriptor_(std::move(descriptor)) {}

    /// The error is an errno.
    [[nodiscard]] static std::expected<UniqueFd, int> opened(const std::string& path);

    std::filesystem::path path_;
    UniqueFd descriptor_;
};

/// A file or folder directly in a pinned folder, and the name under which it was found.
class PinnedFile {
public:
    [[nodiscard]] static std::expected<PinnedFile, PinFailure> open(std::shared_ptr<const PinnedFolder> folder,
                                                                    const std::string& name);

    /// On Linux opened with O_PATH, on macOS with O_EVTONLY.
    [[nodiscard]] int descriptor() const { return descriptor_.get(); }
    [[nodiscard]] const PinnedFolder& folder() const { return *folder_; }
    [[nodiscard]] const std::string& name() const { return name_; }

    /// Absent when they cannot be read. On macOS also when the path leads elsewhere by then.
    [[nodiscard]] std::optional<PinnedFileFacts> facts() const;

    /// Whether the folder is in place and the name in it leads to this item. Another process may outdate the answer at
    /// any moment, so whoever moves the name has to check what arrived.
    [[nodiscard]] PinnedPlace place() const;
    /// Where `name` in the folder `folder`, a descriptor, leads; never `folderMoved`. Recognizes the item also after it
    /// was renamed.
    [[nodiscard]] PinnedPlace placeIn(int folder, const std::string& name) const;

private:
    friend class PinnedFolder;

    PinnedFile(std::shared_ptr<const PinnedFolder> folder, std::string name, UniqueFd descriptor)
        : folder_(std::move(folder)),
          name_(std::move(name)),
          descriptor_(std::move(descriptor)) {}

    [[nodiscard]] static std::expected<UniqueFd, PinFailure> opened(int folder, const std::string& name);
    [[nodiscard]] static PinFailure failureOf(int errorNumber);
    [[nodiscard]] PinnedPlace placeOf(int folder, const std::string& name) const;

    std::shared_ptr<const PinnedFolder> folder_;
    std::string name_;
    UniqueFd descriptor_;
};

} // namespace vantry
