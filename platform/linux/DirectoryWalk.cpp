#include "platform/DirectoryWalk.h"

#include "base/UniqueFd.h"
#include "platform/linux/DirectoryReader.h"
#include "platform/linux/Statx.h"
#include "platform/linux/TreeTally.h"
#include "platform/linux/WalkedFolder.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace vantry {

namespace {

constexpr std::size_t entriesBeforeMoreThreads = 1000; // some two milliseconds, against 0.1 to start a thread
constexpr std::size_t entriesBetweenLooks = 8;         // at the clock: each may take a disk a while
constexpr std::size_t fewestEntriesToShare = 128;
constexpr std::size_t tasksToLookAt = 512; // when looking for some to share
constexpr std::chrono::milliseconds patienceWithOtherThreads{20};

constexpr unsigned statxMask = STATX_TYPE | STATX_BLOCKS | STATX_MTIME;

// An unreadable entry is skipped, but if this process lacks descriptors or memory, the count is incomplete.
bool mayBePassedOver(int errorNumber) {
    return errorNumber != EMFILE && errorNumber != ENFILE && errorNumber != ENOMEM;
}

bool isMountRoot(const struct statx& facts) { return (facts.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0; }

// How much of a folder to read at a time: less when many folders are waiting already, so that a tree that is both deep
// and wide fits into a few megabytes.
ssize_t pieceSize(std::size_t tasks) {
    if (tasks < 8'000)
        return DirectoryReader::largestPiece;
    return tasks < 24'000 ? 4096 : 512; // some hundred entries, about a dozen
}

// Entries of a folder that one thread hands to another, with a descriptor of that folder.
class Share {
public:
    Share() = default;
    // The share is empty when no descriptor is left for it.
    explicit Share(const WalkedFolder& folder) : folder_(fcntl(folder.fd.get(), F_DUPFD_CLOEXEC, 0)) {}

    [[nodiscard]] explicit operator bool() const { return static_cast<bool>(folder_); }

    void add(std::string_view name, EntryKind kind) {
        names_.append(name).push_back('\0');
        kinds_.push_back(kind);
    }
    [[nodiscard]] UniqueFd takeFolder() { return std::move(folder_); }
    /// Valid while this object lives.
    [[nodiscard]] std::vector<DirectoryEntry> entries() const {
        std::vector<DirectoryEntry> entries;
        entries.reserve(kinds_.size());
        const char* name = names_.data();
        for (const EntryKind kind : kinds_) {
            entries.push_back({name, kind});
            name += std::strlen(name) + 1;
        }
        return entries;
    }

private:
    UniqueFd folder_;
    std::string names_; ///< each ends with a zero
    std::vector<EntryKind> kinds_;
};

// What the threads of a walk share.
struct Exchange {
    Exchange(Deadline limit, std::shared_ptr<SpareThreads> spareThreads)
        : deadline(limit),
          helpers(std::move(spareThreads)),
          tallies(helpers->most() + 1) {}

    const Deadline deadline;
    const std::shared_ptr<SpareThreads> helpers;
    std::vector<TreeTally> tallies; ///< one per thread

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Share> shares; ///< waiting for a thread
    unsigned working = 1;     ///< threads that may still hand over work; at first the calling one
    unsigned waiting = 0;     ///< threads that have nothing to do
    std::atomic<bool> sharesWanted{false};

    // Call with the mutex held after a change of the above.
    void updateWants() { sharesWanted.store(waiting > shares.size(), std::memory_order_relaxed); }
    [[nodiscard]] bool finished() const { return working == 0 && shares.empty(); }
};

// Walks depth first. Reads a folder piece by piece and walks the folders of a piece before it reads the next one, so
// that neither a wide nor a deep tree is held in memory.
class Walker {
public:
    Walker(std::shared_ptr<Exchange> exchange, std::size_t index)
        : exchange_(std::move(exchange)),
          tally_(exchange_->tallies[index]) {}

    void walkFrom(UniqueFd root) {
        tasks_.push_back({std::make_shared<WalkedFolder>(std::move(root)), ""});
        runTasks();
    }

    void walk(Share share) {
        if (!stopped())
            walkEntries(std::make_shared<WalkedFolder>(share.takeFolder()), share.entries());
        runTasks();
    }

    // Called repeatedly once the tree has proved to be large.
    std::function<void()> whenLarge;

private:
    // A folder inside `folder` that has to be opened, or, without a name, the rest of `folder` itself.
    struct Task {
        std::shared_ptr<WalkedFolder> folder;
        std::string name;
    };

    bool stopped() {
        if (!hasPassed(exchange_->deadline))
            return false;
        tally_.cutShort();
        return true;
    }

    void missed(int errorNumber) {
        if (!mayBePassedOver(errorNumber))
            tally_.cutShort();
    }

    void runTasks() {
        while (!tasks_.empty() && !stopped()) {
            Task task = std::move(tasks_.back());
            tasks_.pop_back();
            if (!task.name.empty())
                task.folder = std::make_shared<WalkedFolder>(std::move(task.folder), std::move(task.name));
            readPiece(task.folder);
            shareTasks();
        }
        tasks_.clear();
        folders_.clear();
    }

    void readPiece(const std::shared_ptr<WalkedFolder>& folder) {
        if (const auto opened = folders_.open(folder); !opened)
            return opened.error().lost ? tally_.cutShort() : missed(opened.error().errorNumber);
        const auto piece = reader_.read(folder->fd.get(), pieceSize(tasks_.size()));
        if (!piece && !folder->parent)
            return tally_.cutShort(); // an unreadable root tells nothing about the tree
        if (!piece)
            return missed(piece.error());
        const auto atEnd = reader_.atEnd(folder->fd.get());
        if (!atEnd)
            tally_.cutShort(); // the rest of this folder cannot be reached again
        else if (!*atEnd)
            tasks_.push_back({folder, ""});
        walkEntries(folder, *piece);
    }

    void walkEntries(const std::shared_ptr<WalkedFolder>& folder, std::span<const DirectoryEntry> entries) {
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const DirectoryEntry& entry = entries[i];
            if (entry.kind == EntryKind::directory)
                tasks_.push_back({folder, entry.name});
            else if (entry.kind != EntryKind::other)
                count(folder, entry);
            if (++seen_ % entriesBetweenLooks != 0)
                continue;
            if (stopped())
                return;
            if (whenLarge && seen_ >= entriesBeforeMoreThreads &&
                (tasks_.size() > 1 || entries.size() - i > fewestEntriesToShare))
                whenLarge();
            entries = withoutSharedHalf(*folder, entries, i + 1);
        }
    }

    void count(const std::shared_ptr<WalkedFolder>& folder, const DirectoryEntry& entry) {
        struct statx facts;
        if (statx(folder->fd.get(), entry.name, statxByPath, statxMask, &facts) != 0)
            missed(errno);
        else if (isMountRoot(facts))
            return; // on another file system
        else if (S_ISREG(facts.stx_mode))
            tally_.add(facts);
        else if (S_ISDIR(facts.stx_mode) && entry.kind == EntryKind::unknown)
            tasks_.push_back({folder, entry.name});
    }

    [[nodiscard]] bool sharesWanted() const { return exchange_->sharesWanted.load(std::memory_order_relaxed); }

    void handOver(Share share) {
        {
            const std::lock_guard lock(exchange_->mutex);
            exchange_->shares.push_back(std::move(share));
            exchange_->updateWants();
        }
        exchange_->changed.notify_all();
    }

    // Hands half of the entries from `begin` on to a waiting thread, if there is one. Returns the ones that stay.
    std::span<const DirectoryEntry> withoutSharedHalf(const WalkedFolder& folder,
                                                      std::span<const DirectoryEntry> entries, std::size_t begin) {
        const std::size_t left = entries.size() - begin;
        if (left < fewestEntriesToShare || !sharesWanted())
            return entries;
        Share share(folder);
        if (!share)
            return entries;
        const std::size_t kept = entries.size() - left / 2;
        for (const DirectoryEntry& entry : entries.subspan(kept))
            share.add(entry.name, entry.kind);
        handOver(std::move(share));
        return entries.first(kept);
    }

    // Hands half of a group of sibling folders, which this thread would reach last, to a waiting thread, if there is
    // one.
    void shareTasks() {
        if (tasks_.size() < 2 || !sharesWanted())
            return;
        const auto canBeShared = [](const Task& task) { return !task.name.empty() && task.folder->fd; };
        const auto few = static_cast<std::ptrdiff_t>(std::min(tasks_.size(), tasksToLookAt));
        auto begin = std::find_if(tasks_.begin(), tasks_.begin() + few, canBeShared);
        if (begin == tasks_.begin() + few) // recently opened folders stay with this thread
            begin = std::find_if(tasks_.end() - few, tasks_.end(), canBeShared);
        if (begin == tasks_.end())
            return;
        const auto siblingsEnd = std::find_if(
            begin, tasks_.end(), [&](const Task& task) { return task.name.empty() || task.folder != begin->folder; });
        Share share(*begin->folder);
        if (!share)
            return;
        const auto end = begin + (siblingsEnd - begin + 1) / 2;
        for (auto task = begin; task != end; ++task)
            share.add(task->name, EntryKind::directory);
        tasks_.erase(begin, end);
        handOver(std::move(share));
    }

    std::shared_ptr<Exchange> exchange_;
    TreeTally& tally_;
    DirectoryReader reader_;
    OpenFolders folders_;
    std::deque<Task> tasks_;
    std::size_t seen_ = 0; ///< entries
};

// Walks `root`, if given, then what other threads hand over, until everything is walked or the deadline has passed.
void takePart(Walker& walker, Exchange& exchange, UniqueFd root) {
    if (root) {
        walker.walkFrom(std::move(root));
        const std::lock_guard lock(exchange.mutex);
        --exchange.working;
    }
    for (;;) {
        Share share;
        {
            std::unique_lock lock(exchange.mutex);
            ++exchange.waiting;
            exchange.updateWants();
            exchange.changed.notify_all();
            exchange.changed.wait_until(lock, exchange.deadline,
                                        [&] { return !exchange.shares.empty() || exchange.finished(); });
            --exchange.waiting;
            if (exchange.shares.empty())
                return;
            share = std::move(exchange.shares.front());
            exchange.shares.pop_front();
            ++exchange.working;
            exchange.updateWants();
        }
        walker.walk(std::move(share));
        const std::lock_guard lock(exchange.mutex);
        --exchange.working;
    }
}

// Returns whether the thread could be started. A thread that hangs in a file system keeps the shared state and its
// place among the spare threads; nobody waits for it.
bool startHelper(const std::shared_ptr<Exchange>& exchange, std::size_t index) {
    try {
        std::thread([exchange, index] {
            {
                Walker walker(exchange, index);
                takePart(walker, *exchange, {});
            }
            exchange->helpers->giveBack();
        }).detach();
        return true;
    } catch (const std::system_error&) {
        exchange->helpers->giveBack();
        return false;
    }
}

// Avoids an overflow when the deadline is the largest time point.
Deadline shortlyAfter(Deadline deadline) {
    return deadline > Deadline::max() - patienceWithOtherThreads ? deadline : deadline + patienceWithOtherThreads;
}

TreeTotals walkFolder(UniqueFd root, Deadline deadline, const std::shared_ptr<SpareThreads>& helpers) {
    const auto exchange = std::make_shared<Exchange>(deadline, helpers);
    Walker walker(exchange, 0);
    walker.whenLarge = [&exchange, index = std::size_t{1}]() mutable {
        while (index < exchange->tallies.size() && exchange->helpers->take())
            index = startHelper(exchange, index) ? index + 1 : exchange->tallies.size(); // the running ones do the rest
    };
    takePart(walker, *exchange, std::move(root));

    std::unique_lock lock(exchange->mutex);
    const bool finished =
        exchange->changed.wait_until(lock, shortlyAfter(deadline), [&] { return exchange->finished(); });
    return TreeTally::sum(exchange->tallies, finished);
}

} // namespace

TreeTotals walkTree(const std::filesystem::path& path, Deadline deadline,
                    const std::shared_ptr<SpareThreads>& helpers) {
    struct statx facts;
    if (statx(AT_FDCWD, path.c_str(), statxByPath, statxMask, &facts) != 0)
        return {};
    if (S_ISREG(facts.stx_mode)) {
        TreeTally tally;
        tally.add(facts);
        return TreeTally::sum({&tally, 1}, true);
    }
    if (hasPassed(deadline) || !S_ISDIR(facts.stx_mode))
        return {};
    UniqueFd root(open(path.c_str(), folderOpenFlags));
    return root ? walkFolder(std::move(root), deadline, helpers) : TreeTotals{};
}

bool isMountPoint(const std::filesystem::path& path) {
    struct statx facts;
    return statx(AT_FDCWD, path.c_str(), statxByPath, STATX_TYPE, &facts) == 0 && isMountRoot(facts);
}

Result<std::vector<std::string>> allNames(const std::filesystem::path& folder) {
    const UniqueFd fd(open(folder.c_str(), folderOpenFlags));
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
            names.emplace_back(entry.name);
    }
}

Result<std::vector<std::string>> visibleNames(const std::filesystem::path& folder) {
    auto names = allNames(folder);
    if (names)
        std::erase_if(*names, [](const std::string& name) { return name.starts_with('.'); });
    return names;
}

} // namespace vantry
