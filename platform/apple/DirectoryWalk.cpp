#include "platform/DirectoryWalk.h"

#include "base/ByteSum.h"
#include "base/UniqueFd.h"
#include "platform/ItemFacts.h"
#include "platform/apple/DirectoryReader.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

// While this lives, its thread does not make the system download dataless files from the cloud. Calls that would have
// to download one fail with EDEADLK.
class NothingIsFetched {
public:
    NothingIsFetched() : earlier_(getiopolicy_np(IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES, IOPOL_SCOPE_THREAD)) {
        set(IOPOL_MATERIALIZE_DATALESS_FILES_OFF);
    }
    NothingIsFetched(const NothingIsFetched&) = delete;
    NothingIsFetched& operator=(const NothingIsFetched&) = delete;
    ~NothingIsFetched() { set(std::max(earlier_, IOPOL_MATERIALIZE_DATALESS_FILES_DEFAULT)); }

private:
    static void set(int policy) {
        setiopolicy_np(IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES, IOPOL_SCOPE_THREAD, policy);
    }

    int earlier_;
};

// An unreadable entry is skipped, but if this process lacks descriptors or memory, the count is incomplete.
bool mayBePassedOver(int errorNumber) {
    return errorNumber != EMFILE && errorNumber != ENFILE && errorNumber != ENOMEM;
}

void addFile(TreeTotals& totals, std::int64_t allocatedBytes, std::optional<SystemTime> modification) {
    totals.complete = addBytes(totals.allocatedBytes, std::max<std::int64_t>(allocatedBytes, 0)) && totals.complete;
    ++totals.regularFiles;
    totals.newestModification = std::max(totals.newestModification, modification);
}

// Walks a tree depth first with one thread. It holds the path to the current folder and, for each folder on it, the
// names of some folders inside, so that neither a wide nor a deep tree is held in memory.
class Walk {
public:
    explicit Walk(Deadline deadline) : deadline_(deadline) {}

    [[nodiscard]] TreeTotals from(UniqueFd root) {
        const auto identity = identityOf(root);
        if (!identity)
            return {};
        totals_.complete = true;
        device_ = identity->device;
        enter("", std::move(root), *identity);
        while (!path_.empty()) {
            if (hasPassed(deadline_)) {
                totals_.complete = false;
                break;
            }
            step();
        }
        return totals_;
    }

private:
    // A process has 256 descriptors by default, and up to four walks run at once.
    static constexpr std::size_t mostOpen = 48;
    static constexpr std::size_t mostFarApart = mostOpen / 4;
    static constexpr std::size_t foldersAhead = 512;
    static constexpr std::size_t manyFolders = 8'000; // whose names are held
    static constexpr std::size_t smallPiece = 4096;   // some 40 entries, or one with the longest name

    struct Identity {
        dev_t device = 0;
        ino_t inode = 0;
        SystemTime modification; ///< of its entries

        [[nodiscard]] bool isSameFolder(const Identity& other) const {
            return device == other.device && inode == other.inode;
        }
    };

    // A folder on the path. Its descriptor may be closed to save descriptors, except that of the root.
    struct Folder {
        std::string name;
        UniqueFd fd;
        std::vector<std::string> folders; ///< inside it, not walked yet
        std::size_t entriesRead = 0;
        std::size_t entriesToSkip = 0; ///< read before the folder was reopened
        bool readToEnd = false;
        Identity identity; ///< from before it was read
    };

    void step() {
        Folder& folder = path_.back();
        if (folder.readToEnd && folder.folders.empty())
            leave();
        else if (!folder.fd && !reopen())
            leave();
        else if (!folder.readToEnd && folder.folders.size() < (holdsMany() ? 1 : foldersAhead))
            readPiece(folder);
        else
            descend(folder);
    }

    // Beyond this, each level of a tree that is both deep and wide adds little to the memory.
    [[nodiscard]] bool holdsMany() const { return foldersHeld_ >= manyFolders; }

    void readPiece(Folder& folder) {
        const bool isSmall = holdsMany() && folder.entriesToSkip == 0;
        const auto piece = reader_.read(folder.fd.get(), isSmall ? smallPiece : DirectoryReader::largestPiece);
        if (!piece) {
            folder.readToEnd = true;
            // An unreadable root tells nothing about the tree.
            totals_.complete = totals_.complete && mayBePassedOver(piece.error()) && path_.size() > 1;
            return;
        }
        folder.readToEnd = piece->empty();
        // Reading can only restart at the beginning of a folder, so entries that were read before are skipped.
        const std::size_t skipped = std::min(folder.entriesToSkip, piece->size());
        folder.entriesToSkip -= skipped;
        folder.entriesRead += piece->size() - skipped;
        for (const DirectoryEntry& entry : piece->subspan(skipped))
            take(folder, entry);
    }

    void take(Folder& folder, const DirectoryEntry& entry) {
        if (entry.error != 0)
            return missed(entry.error);
        switch (entry.kind) {
        case EntryKind::regularFile: addFile(totals_, entry.allocatedBytes, entry.modification); break;
        case EntryKind::directory:
            if ((entry.flags & SF_DATALESS) == 0) {
                folder.folders.emplace_back(entry.name);
                ++foldersHeld_;
            }
            break;
        case EntryKind::other: break;
        case EntryKind::unknown: totals_.complete = false; break;
        }
    }

    void descend(Folder& folder) {
        std::string name = std::move(folder.folders.back());
        folder.folders.pop_back();
        --foldersHeld_;
        UniqueFd fd(openat(folder.fd.get(), name.c_str(), openFlags));
        if (!fd)
            return missed(errno);
        const auto identity = identityOf(fd);
        if (identity && identity->device == device_) // else it is a mount point
            enter(std::move(name), std::move(fd), *identity);
    }

    void missed(int errorNumber) { totals_.complete = totals_.complete && mayBePassedOver(errorNumber); }

    void enter(std::string name, UniqueFd fd, const Identity& identity) {
        path_.emplace_back();
        path_.back().name = std::move(name);
        path_.back().identity = identity;
        keepOpen(path_.size() - 1, std::move(fd));
    }

    void leave() {
        if (path_.back().fd)
            open_.pop_back();
        foldersHeld_ -= path_.back().folders.size();
        path_.pop_back();
    }

    // Reopens the last folder of the path, by way of the folders after the nearest open one.
    bool reopen() {
        for (std::size_t i = open_.back() + 1; i < path_.size(); ++i) {
            Folder& folder = path_[i];
            UniqueFd fd(openat(path_[i - 1].fd.get(), folder.name.c_str(), openFlags));
            const auto found = identityOf(fd);
            if (!found || !found->isSameFolder(folder.identity) || hasPassed(deadline_)) {
                totals_.complete = false;
                return false;
            }
            // After a change the skipped entries may not be those that were read.
            if (!folder.readToEnd && found->modification != folder.identity.modification)
                totals_.complete = false;
            folder.entriesToSkip = folder.entriesRead;
            keepOpen(i, std::move(fd));
        }
        return true;
    }

    void keepOpen(std::size_t index, UniqueFd fd) {
        path_[index].fd = std::move(fd);
        open_.push_back(index);
        if (open_.size() > mostOpen)
            closeSome();
    }

    // The folders near the end of the path are needed first and stay open. Some of the earlier ones stay open too,
    // evenly spread, so that on the way back no folder is far from an open one.
    void closeSome() {
        const std::size_t stride = std::bit_ceil(path_.size() / mostFarApart + 1);
        const std::size_t farOnes = open_.size() - mostOpen / 2;
        std::size_t kept = 0;
        for (std::size_t i = 0; i < open_.size(); ++i)
            if (i < farOnes && open_[i] % stride != 0)
                path_[open_[i]].fd.reset();
            else
                open_[kept++] = open_[i];
        open_.resize(kept);
    }

    static std::optional<Identity> identityOf(const UniqueFd& fd) {
        struct stat facts = {};
        if (fstat(fd.get(), &facts) != 0)
            return std::nullopt;
        return Identity{facts.st_dev, facts.st_ino,
                        systemTimeFromUnix(facts.st_mtimespec.tv_sec, facts.st_mtimespec.tv_nsec)};
    }

    Deadline deadline_;
    dev_t device_ = 0; ///< of the root
    TreeTotals totals_;
    DirectoryReader reader_;
    std::vector<Folder> path_;
    std::vector<std::size_t> open_; ///< indices of the open folders of the path, ascending
    std::size_t foldersHeld_ = 0;   ///< number of names held by all folders of the path
};

template <class Wanted>
Result<std::vector<std::string>> namesIn(const std::filesystem::path& folder, Wanted isWanted) {
    const NothingIsFetched nothingIsFetched;
    const UniqueFd fd(open(folder.c_str(), openFlags));
    if (!fd)
        return std::unexpected(errorFromErrno(errno, folder.native()));
    DirectoryReader reader;
    std::vector<std::string> names;
    for (;;) {
        const auto piece = reader.read(fd.get());
        if (!piece)
            return std::unexpected(errorFromErrno(piece.error(), folder.native()));
        if (piece->empty())
            return names;
        for (const DirectoryEntry& entry : *piece)
            if (isWanted(entry))
                names.emplace_back(entry.name);
    }
}

} // namespace

// Helpers are not used: one thread walks the whole tree.
TreeTotals walkTree(const std::filesystem::path& path, Deadline deadline,
                    const std::shared_ptr<SpareThreads>& /*helpers*/) {
    const auto facts = readItemFacts(path);
    if (facts && facts->kind == ItemFacts::Kind::regularFile) {
        TreeTotals totals{.complete = true};
        addFile(totals, facts->allocatedBytes.value_or(0), facts->contentModificationDate);
        return totals;
    }
    if (!facts || facts->kind != ItemFacts::Kind::folder) // opening a folder on a hung file system would wait for it
        return {};
    const NothingIsFetched nothingIsFetched;
    return Walk(deadline).from(UniqueFd(open(path.c_str(), openFlags)));
}

bool isMountPoint(const std::filesystem::path& path) {
    struct stat item = {};
    struct stat folder = {};
    return lstat(path.c_str(), &item) == 0 && stat(path.parent_path().c_str(), &folder) == 0 &&
           item.st_dev != folder.st_dev;
}

Result<std::vector<std::string>> allNames(const std::filesystem::path& folder) {
    return namesIn(folder, [](const DirectoryEntry&) { return true; });
}

Result<std::vector<std::string>> visibleNames(const std::filesystem::path& folder) {
    return namesIn(folder,
                   [](const DirectoryEntry& entry) { return entry.name[0] != '.' && (entry.flags & UF_HIDDEN) == 0; });
}

} // namespace vantry
