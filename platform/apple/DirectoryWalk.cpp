#include "platform/DirectoryWalk.h"

#include "base/UniqueFd.h"
#include "platform/ItemFacts.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <expected>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <span>
#include <sys/attr.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/vnode.h>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

// While this lives, its thread does not make the system fetch what is only in the cloud: to look at a file must not
// download it. What would have to be fetched fails with EDEADLK.
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

enum class EntryKind { regularFile, directory, other, unknown };

struct DirectoryEntry {
    const char* name = nullptr; ///< valid until the next read
    int error = 0;              ///< an errno: why only the name is known
    EntryKind kind = EntryKind::unknown;
    std::uint32_t flags = 0; ///< of `st_flags`
    std::int64_t allocatedBytes = 0;
    std::optional<SystemTime> modification;
};

// What the system wrote about one entry: values one after the other, aligned to four bytes. What is read beyond its
// end is zero, and remembered.
class Record {
public:
    explicit Record(std::span<const char> bytes) : bytes_(bytes) {}

    template <class Value>
    Value take() {
        Value value = {};
        if (const auto place = placeOf(at_, sizeof value))
            std::memcpy(&value, place, sizeof value);
        at_ += sizeof value;
        return value;
    }
    // A name stands elsewhere in the record, at a distance from where it is mentioned.
    const char* takeName() {
        const std::size_t from = at_;
        const auto reference = take<attrreference_t>();
        const char* name = placeOf(from + static_cast<std::size_t>(reference.attr_dataoffset), reference.attr_length);
        isWhole_ = isWhole_ && name && std::memchr(name, 0, reference.attr_length);
        return isWhole_ ? name : nullptr;
    }
    [[nodiscard]] bool isWhole() const { return isWhole_; }

private:
    const char* placeOf(std::size_t begin, std::size_t size) {
        isWhole_ = isWhole_ && begin <= bytes_.size() && size <= bytes_.size() - begin;
        return isWhole_ ? bytes_.data() + begin : nullptr;
    }

    std::span<const char> bytes_;
    std::size_t at_ = 0;
    bool isWhole_ = true;
};

// Reads folders in large pieces, the facts about each entry with its name.
class DirectoryReader {
public:
    static constexpr std::size_t largestPiece =
        64 * 1024; // some 700 entries, so that the clock is looked at in between

    // The next entries of the folder that is open as `fd`, "." and ".." left out; empty at its end. The error is an
    // errno.
    [[nodiscard]] std::expected<std::span<const DirectoryEntry>, int> read(int fd, std::size_t size = largestPiece) {
        int count = 0;
        do
            count = getattrlistbulk(fd, &wanted_, buffer_.get(), size, FSOPT_NOFOLLOW);
        while (count < 0 && errno == EINTR);
        if (count < 0)
            return std::unexpected(errno);
        entries_.clear();
        std::span<const char> rest(buffer_.get(), size);
        for (; count > 0; --count) {
            const std::size_t length = Record(rest).take<std::uint32_t>();
            const auto entry = length <= rest.size() ? entryIn(rest.first(length)) : std::nullopt;
            if (!entry)
                return std::unexpected(EIO);
            entries_.push_back(*entry);
            rest = rest.subspan(length);
        }
        return entries_;
    }

private:
    // In the order of the bits, but for the two that come first.
    static std::optional<DirectoryEntry> entryIn(std::span<const char> bytes) {
        Record record(bytes);
        record.take<std::uint32_t>(); // its length
        const auto returned = record.take<attribute_set_t>();
        const auto has = [&](attrgroup_t attribute) { return (returned.commonattr & attribute) != 0; };
        const auto hasOfFile = [&](attrgroup_t attribute) { return (returned.fileattr & attribute) != 0; };
        DirectoryEntry entry;
        if (has(ATTR_CMN_ERROR))
            entry.error = static_cast<int>(record.take<std::uint32_t>());
        if (has(ATTR_CMN_NAME))
            entry.name = record.takeName();
        if (has(ATTR_CMN_OBJTYPE))
            entry.kind = kindOf(record.take<fsobj_type_t>());
        if (has(ATTR_CMN_MODTIME)) {
            const auto time = record.take<timespec>();
            entry.modification = systemTimeFromUnix(time.tv_sec, time.tv_nsec);
        }
        if (has(ATTR_CMN_FLAGS))
            entry.flags = record.take<std::uint32_t>();
        if (hasOfFile(ATTR_FILE_ALLOCSIZE))
            entry.allocatedBytes = record.take<off_t>();
        if (hasOfFile(ATTR_FILE_DATAALLOCSIZE))
            if (const auto dataBytes = record.take<off_t>(); !hasOfFile(ATTR_FILE_ALLOCSIZE))
                entry.allocatedBytes = dataBytes;
        return record.isWhole() && entry.name ? std::optional(entry) : std::nullopt;
    }

    static EntryKind kindOf(fsobj_type_t type) {
        switch (type) {
        case VREG: return EntryKind::regularFile;
        case VDIR: return EntryKind::directory;
        default: return EntryKind::other;
        }
    }

    attrlist wanted_{.bitmapcount = ATTR_BIT_MAP_COUNT,
                     .reserved = 0,
                     .commonattr = ATTR_CMN_RETURNED_ATTRS | ATTR_CMN_ERROR | ATTR_CMN_NAME | ATTR_CMN_OBJTYPE |
                                   ATTR_CMN_MODTIME | ATTR_CMN_FLAGS,
                     .volattr = 0,
                     .dirattr = 0,
                     .fileattr = ATTR_FILE_ALLOCSIZE | ATTR_FILE_DATAALLOCSIZE,
                     .forkattr = 0};
    std::unique_ptr<char[]> buffer_ = std::make_unique_for_overwrite<char[]>(largestPiece);
    std::vector<DirectoryEntry> entries_;
};

// An entry that cannot be read is passed over. Not so when it is this process that cannot: there is more to be seen.
bool mayBePassedOver(int errorNumber) {
    return errorNumber != EMFILE && errorNumber != ENFILE && errorNumber != ENOMEM;
}

void addFile(TreeTotals& totals, std::int64_t allocatedBytes, std::optional<SystemTime> modification) {
    if (__builtin_add_overflow(totals.allocatedBytes, std::max<std::int64_t>(allocatedBytes, 0),
                               &totals.allocatedBytes)) {
        totals.allocatedBytes = std::numeric_limits<std::int64_t>::max();
        totals.complete = false;
    }
    ++totals.regularFiles;
    totals.newestModification = std::max(totals.newestModification, modification);
}

// Walks a tree depth first with one thread. What it holds is the path to where it is, and of each folder on it the
// names of some folders inside, so that neither a wide nor a deep tree has to be held in memory.
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
    // A process has 256 descriptors, unless it asks for more; four threads walk at once.
    static constexpr std::size_t mostOpen = 48;
    static constexpr std::size_t mostFarApart = mostOpen / 4;
    static constexpr std::size_t foldersAhead = 512;
    static constexpr std::size_t manyFolders = 8'000; // of which the names are held
    static constexpr std::size_t smallPiece = 4096;   // some 40 entries, or one with the longest name

    struct Identity {
        dev_t device = 0;
        ino_t inode = 0;
        SystemTime modification; ///< of what stands in it

        [[nodiscard]] bool isSameFolder(const Identity& other) const {
            return device == other.device && inode == other.inode;
        }
    };

    // A folder on the path. Its descriptor may be closed for want of others, that of the first one never is.
    struct Folder {
        std::string name;
        UniqueFd fd;
        std::vector<std::string> folders; ///< inside it, still to be walked
        std::size_t entriesRead = 0;
        std::size_t entriesToSkip = 0; ///< they were read before it was opened again
        bool readToEnd = false;
        Identity identity; ///< before it was read
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

    // From here on each level of a tree that is both deep and wide adds little to what is held.
    [[nodiscard]] bool holdsMany() const { return foldersHeld_ >= manyFolders; }

    void readPiece(Folder& folder) {
        const bool isSmall = holdsMany() && folder.entriesToSkip == 0;
        const auto piece = reader_.read(folder.fd.get(), isSmall ? smallPiece : DirectoryReader::largestPiece);
        if (!piece) {
            folder.readToEnd = true;
            // Of a root that cannot be read nothing is known.
            totals_.complete = totals_.complete && mayBePassedOver(piece.error()) && path_.size() > 1;
            return;
        }
        folder.readToEnd = piece->empty();
        // A place inside a folder cannot be returned to, only its beginning.
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
        if (identity && identity->device == device_) // else another file system is mounted there
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

    // Opens the last folder of the path again, and before it those that lead there from the nearest one that is open.
    bool reopen() {
        for (std::size_t i = open_.back() + 1; i < path_.size(); ++i) {
            Folder& folder = path_[i];
            UniqueFd fd(openat(path_[i - 1].fd.get(), folder.name.c_str(), openFlags));
            const auto found = fd ? identityOf(fd) : std::nullopt;
            if (!found || !found->isSameFolder(folder.identity) || hasPassed(deadline_)) {
                totals_.complete = false;
                return false;
            }
            // Where something was added or removed, other entries are skipped than those that were read.
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

    // The folders near the end of the path are needed first and stay open. Of those before them some do, evenly spread,
    // so that on the way back no folder is far from an open one.
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
    std::vector<std::size_t> open_; ///< which folders of the path are open, in its order
    std::size_t foldersHeld_ = 0;   ///< in the folders of the path, still to be walked
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

// One thread walks it all.
TreeTotals walkTree(const std::filesystem::path& path, Deadline deadline,
                    const std::shared_ptr<SpareThreads>& /*helpers*/) {
    const auto facts = readItemFacts(path);
    if (facts && facts->kind == ItemFacts::Kind::regularFile) {
        TreeTotals totals{.complete = true};
        addFile(totals, facts->allocatedBytes.value_or(0), facts->contentModificationDate);
        return totals;
    }
    if (!facts || hasPassed(deadline) || facts->kind != ItemFacts::Kind::folder)
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
