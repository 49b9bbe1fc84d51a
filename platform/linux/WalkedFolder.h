#pragma once

#include "base/UniqueFd.h"

#include <cerrno>
#include <cstddef>
#include <deque>
#include <expected>
#include <fcntl.h>
#include <linux/openat2.h>
#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vantry {

inline constexpr int folderOpenFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

/// Opens the folder `name` in the folder `parent`. Fails with EXDEV for a mount point, except on kernels before 5.6 and
/// in sandboxes that block openat2.
[[nodiscard]] inline UniqueFd openFolderIn(int parent, const char* name) {
    open_how how = {};
    how.flags = folderOpenFlags;
    how.resolve = RESOLVE_NO_XDEV;
    UniqueFd fd(static_cast<int>(syscall(SYS_openat2, parent, name, &how, sizeof how)));
    if (!fd && (errno == ENOSYS || errno == EPERM))
        fd.reset(openat(parent, name, folderOpenFlags));
    return fd;
}

/// A folder of a tree that is being walked. `OpenFolders` may close its descriptor to save descriptors, except that of
/// the root.
struct WalkedFolder {
    WalkedFolder(std::shared_ptr<WalkedFolder> parentFolder, std::string folderName)
        : parent(std::move(parentFolder)),
          name(std::move(folderName)) {}
    explicit WalkedFolder(UniqueFd root) : fd(std::move(root)) {}
    WalkedFolder(const WalkedFolder&) = delete;
    WalkedFolder& operator=(const WalkedFolder&) = delete;
    ~WalkedFolder() {
        // Releases the chain of parents in a loop: recursion could overflow the stack in a deep tree.
        for (auto ancestor = std::move(parent); ancestor && ancestor.use_count() == 1;)
            ancestor = std::exchange(ancestor->parent, nullptr);
    }

    struct Identity {
        dev_t device = 0;
        ino_t inode = 0;

        bool operator==(const Identity&) const = default;
    };

    std::shared_ptr<WalkedFolder> parent;
    std::string name;
    UniqueFd fd;
    off_t position = 0;               ///< where reading continues after the descriptor was closed
    std::optional<Identity> identity; ///< set when the descriptor was closed
};

/// Why a folder is not open.
struct FolderNotOpened {
    int errorNumber = 0;
    bool lost = false; ///< this folder or a parent was open before and cannot be found again
};

/// Opens the folders of a walk by their names in their parents, never through a link, and keeps only some of them open.
class OpenFolders {
public:
    /// Opens `folder` unless it is open. Reading continues where it stopped.
    [[nodiscard]] std::expected<void, FolderNotOpened> open(const std::shared_ptr<WalkedFolder>& folder) {
        std::vector<std::shared_ptr<WalkedFolder>> closed;
        for (auto next = folder; !next->fd; next = next->parent) {
            if (next->identity && climbTo(next))
                break;
            closed.push_back(next);
        }
        for (auto next = closed.rbegin(); next != closed.rend(); ++next) {
            UniqueFd fd = openFolderIn((*next)->parent->fd.get(), (*next)->name.c_str());
            if (!fd || ((*next)->identity && !isThatOne(fd, **next)))
                return std::unexpected(FolderNotOpened{errno, (*next)->identity.has_value()});
            keep(*next, std::move(fd));
        }
        latest_ = folder;
        return {};
    }

    void clear() {
        latest_.reset();
        open_.clear();
    }

private:
    // Up to four threads walk at once, and some systems allow a process only 256 descriptors. Few trees are deeper.
    static constexpr std::size_t mostOpen = 48;

    static std::optional<WalkedFolder::Identity> identityOf(const UniqueFd& fd) {
        struct stat facts = {};
        if (fstat(fd.get(), &facts) != 0)
            return std::nullopt;
        return WalkedFolder::Identity{facts.st_dev, facts.st_ino};
    }

    // Whether `fd` is the closed folder `folder` again. If so, its position is restored.
    static bool isThatOne(const UniqueFd& fd, const WalkedFolder& folder) {
        return identityOf(fd) == folder.identity && lseek(fd.get(), folder.position, SEEK_SET) == folder.position;
    }

    void keep(const std::shared_ptr<WalkedFolder>& folder, UniqueFd fd) {
        folder->fd = std::move(fd);
        open_.push_back(folder);
        if (open_.size() <= mostOpen)
            return;
        std::erase_if(open_, [](const auto& reference) { return reference.expired(); });
        while (open_.size() > mostOpen)
            closeOldest();
    }

    // The oldest descriptors belong to the folders that are needed last. A folder without an identity stays open.
    void closeOldest() {
        const auto oldest = open_.front().lock();
        open_.pop_front();
        if (!oldest)
            return;
        oldest->identity = identityOf(oldest->fd);
        oldest->position = lseek(oldest->fd.get(), 0, SEEK_CUR);
        if (oldest->identity && oldest->position >= 0)
            oldest->fd.reset();
    }

    // After walking a deep folder, its parents are nearer by ".." than by their names from the root.
    bool climbTo(const std::shared_ptr<WalkedFolder>& folder) {
        const WalkedFolder* nearest = nullptr;
        std::size_t steps = 0;
        const WalkedFolder* below = latest_.get();
        for (; below && below != folder.get(); below = below->parent.get()) {
            if (below->fd) {
                nearest = below;
                steps = 0;
            }
            ++steps;
        }
        if (!below || !nearest)
            return false;
        UniqueFd fd(openat(nearest->fd.get(), "..", folderOpenFlags));
        while (fd && --steps > 0)
            fd.reset(openat(fd.get(), "..", folderOpenFlags));
        if (!fd || !isThatOne(fd, *folder))
            return false;
        keep(folder, std::move(fd));
        return true;
    }

    std::deque<std::weak_ptr<WalkedFolder>> open_; ///< in the order of opening; some may have expired
    std::shared_ptr<WalkedFolder> latest_;         ///< the folder that was opened last
};

} // namespace vantry
