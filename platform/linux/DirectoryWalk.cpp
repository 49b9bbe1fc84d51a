#include "platform/DirectoryWalk.h"

#include "base/UniqueFd.h"
#include "platform/linux/DirectoryReader.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <deque>
#include <fcntl.h>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <utility>

namespace vantry {

namespace {

constexpr std::uint64_t filesBeforeMoreThreads = 4000;
constexpr std::size_t openDirectoriesPerThread = 128;
constexpr int filesBetweenLooksAtTheClock = 64;
constexpr std::chrono::milliseconds patienceWithOtherThreads{20};

constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
constexpr int statxFlags = AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT | AT_SYMLINK_NOFOLLOW;
constexpr unsigned statxMask = STATX_TYPE | STATX_BLOCKS | STATX_MTIME;
constexpr std::int64_t statxBlockSize = 512;

// What is not there any more, is not ours to read or is no folder is passed over; anything else cuts the walk short.
bool mayBePassedOver(int errorNumber) {
    return errorNumber == EACCES || errorNumber == EPERM || errorNumber == ENOENT || errorNumber == ENOTDIR ||
           errorNumber == ELOOP;
}

constexpr std::int64_t noTime = std::numeric_limits<std::int64_t>::min();

std::int64_t nanosecondsOf(const statx_timestamp& time) {
    std::int64_t nanoseconds = 0;
    if (__builtin_mul_overflow(time.tv_sec, std::int64_t{1'000'000'000}, &nanoseconds) ||
        __builtin_add_overflow(nanoseconds, std::int64_t{time.tv_nsec}, &nanoseconds))
        return time.tv_sec < 0 ? noTime + 1 : std::numeric_limits<std::int64_t>::max();
    return nanoseconds;
}

// What one thread has counted; others may look at it at any time.
struct Tally {
    std::atomic<std::int64_t> bytes{0};
    std::atomic<std::uint64_t> files{0};
    std::atomic<std::int64_t> newest{noTime};
    std::atomic<bool> cutShort{false};

    // Only the owner writes, so a load and a store are enough.
    void add(const struct statx& facts) {
        std::int64_t sum = 0;
        const auto blocks = static_cast<std::int64_t>(
            std::min<std::uint64_t>(facts.stx_blocks, std::numeric_limits<std::int64_t>::max() / statxBlockSize));
        if (__builtin_add_overflow(bytes.load(std::memory_order_relaxed), blocks * statxBlockSize, &sum)) {
            sum = std::numeric_limits<std::int64_t>::max();
            cutShort.store(true, std::memory_order_relaxed);
        }
        bytes.store(sum, std::memory_order_relaxed);
        files.store(files.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        const std::int64_t time = nanosecondsOf(facts.stx_mtime);
        if (time > newest.load(std::memory_order_relaxed))
            newest.store(time, std::memory_order_relaxed);
    }
};

// The folders that one thread hands to others, and who still works.
struct Exchange {
    explicit Exchange(Deadline limit, unsigned count) : deadline(limit), tallies(count) {}

    const Deadline deadline;
    std::vector<Tally> tallies; ///< one a thread

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<UniqueFd> folders; ///< opened, waiting for a thread
    unsigned working = 0;         ///< threads that may still hand something over
    unsigned waiting = 0;         ///< threads that have nothing to do
    std::atomic<bool> foldersWanted{false};

    // With the mutex held, after any of the above has changed.
    void updateWants() { foldersWanted.store(waiting > folders.size(), std::memory_order_relaxed); }
    [[nodiscard]] bool finished() const { return working == 0 && folders.empty(); }
};

// A folder whose contents are being walked. Its descriptor may be closed for want of others and is opened again, from
// its parent, when it is needed.
struct Directory {
    Directory(std::shared_ptr<Directory> parentFolder, std::string folderName)
        : parent(std::move(parentFolder)),
          name(std::move(folderName)) {}
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;
    ~Directory() {
        // A chain of folders is let go of one by one: as deep as a tree can be, the stack is not.
        for (auto ancestor = std::move(parent); ancestor && ancestor.use_count() == 1;)
            ancestor = std::exchange(ancestor->parent, nullptr);
    }

    std::shared_ptr<Directory> parent;
    std::string name;
    UniqueFd fd;
    off_t position = 0; ///< where reading goes on after the descriptor was closed
};

// Walks what it is given depth first: a folder's entries piece by piece, the folders in a piece before its next piece,
// so that neither a wide nor a deep tree has to be held in memory.
class Walker {
public:
    Walker(std::shared_ptr<Exchange> exchange, std::size_t index)
        : exchange_(std::move(exchange)),
          tally_(exchange_->tallies[index]) {}

    void walkFrom(UniqueFd root) {
        auto folder = std::make_shared<Directory>(nullptr, "");
        folder->fd = std::move(root);
        tasks_.push_back({std::move(folder), std::nullopt});
        while (!tasks_.empty() && !stopped())
            runNext();
        tasks_.clear();
        open_.clear();
    }

    // Called once, when the tree has shown to be large.
    std::function<void()> whenLarge;

private:
    // A folder inside `folder` that is still to be opened or, without a name, the rest of `folder` itself.
    struct Task {
        std::shared_ptr<Directory> folder;
        std::optional<std::string> name;
    };

    bool stopped() {
        if (!hasPassed(exchange_->deadline))
            return false;
        tally_.cutShort = true;
        return true;
    }

    void runNext() {
        Task task = std::move(tasks_.back());
        tasks_.pop_back();
        auto folder = std::move(task.folder);
        if (task.name) {
            folder = std::make_shared<Directory>(std::move(folder), std::move(*task.name));
            if (!reopen(folder))
                return;
        }
        readPiece(folder);
        if (whenLarge && tally_.files.load(std::memory_order_relaxed) >= filesBeforeMoreThreads && tasks_.size() > 1)
            std::exchange(whenLarge, nullptr)();
        if (exchange_->foldersWanted.load(std::memory_order_relaxed))
            handOver();
    }

    void readPiece(const std::shared_ptr<Directory>& folder) {
        if (!folder->fd && !reopen(folder))
            return;
        const auto piece = reader_.read(folder->fd.get());
        if (!piece) {
            tally_.cutShort = tally_.cutShort || !mayBePassedOver(piece.error());
            return;
        }
        if (piece->empty())
            return;
        tasks_.push_back({folder, std::nullopt});
        int untilLook = filesBetweenLooksAtTheClock;
        for (const DirectoryEntry& entry : *piece) {
            if (entry.kind == EntryKind::directory)
                tasks_.push_back({folder, std::string(entry.name)});
            else if (entry.kind == EntryKind::regularFile || entry.kind == EntryKind::unknown)
                count(folder, entry);
            if (--untilLook == 0) {
                if (stopped())
                    return;
                untilLook = filesBetweenLooksAtTheClock;
            }
        }
    }

    void count(const std::shared_ptr<Directory>& folder, const DirectoryEntry& entry) {
        struct statx facts;
        if (statx(folder->fd.get(), entry.name, statxFlags, statxMask, &facts) != 0) {
            tally_.cutShort = tally_.cutShort || !mayBePassedOver(errno);
            return;
        }
        if (S_ISREG(facts.stx_mode))
            tally_.add(facts);
        else if (S_ISDIR(facts.stx_mode) && entry.kind == EntryKind::unknown)
            tasks_.push_back({folder, std::string(entry.name)});
    }

    // Opens a folder by its name in its parent, and before that those of its ancestors that are closed.
    bool reopen(const std::shared_ptr<Directory>& folder) {
        std::vector<std::shared_ptr<Directory>> closed;
        for (auto ancestor = folder; !ancestor->fd; ancestor = ancestor->parent)
            closed.push_back(ancestor);
        for (auto next = closed.rbegin(); next != closed.rend(); ++next) {
            Directory& directory = **next;
            directory.fd = openIn(*directory.parent, directory.name);
            if (!directory.fd)
                return false;
            if (directory.position != 0)
                lseek(directory.fd.get(), directory.position, SEEK_SET);
            open_.push_back(*next);
            closeOldest(folder.get());
        }
        return true;
    }

    UniqueFd openIn(const Directory& parent, const std::string& name) {
        UniqueFd fd(openat(parent.fd.get(), name.c_str(), openFlags));
        if (!fd)
            tally_.cutShort = tally_.cutShort || !mayBePassedOver(errno);
        return fd;
    }

    // Keeps few descriptors open. The oldest belong to the folders that are needed last; the first one of all stays, as
    // it has no parent to be opened from, and so do the newest, which the caller is about to use.
    void closeOldest(const Directory* inUse) {
        std::erase_if(open_, [](const auto& reference) { return reference.expired(); });
        if (open_.size() <= openDirectoriesPerThread)
            return;
        for (std::size_t i = 0; i + 2 < open_.size(); ++i)
            if (const auto oldest = open_[i].lock(); oldest && oldest.get() != inUse && oldest->fd) {
                oldest->position = lseek(oldest->fd.get(), 0, SEEK_CUR);
                oldest->fd.reset();
                open_.erase(open_.begin() + static_cast<std::ptrdiff_t>(i));
                return;
            }
    }

    // Gives a waiting thread the folder that this one would come to last, opened, so that nothing is shared.
    void handOver() {
        const auto last = std::ranges::find_if(tasks_, [](const Task& task) { return task.name.has_value(); });
        if (last == tasks_.end() || tasks_.size() < 2)
            return;
        const Task task = std::move(*last);
        tasks_.erase(last);
        if (!task.folder->fd && !reopen(task.folder))
            return;
        UniqueFd fd = openIn(*task.folder, *task.name);
        if (!fd)
            return;
        {
            const std::lock_guard lock(exchange_->mutex);
            exchange_->folders.push_back(std::move(fd));
            exchange_->updateWants();
        }
        exchange_->changed.notify_all();
    }

    std::shared_ptr<Exchange> exchange_;
    Tally& tally_;
    DirectoryReader reader_;
    std::deque<Task> tasks_;
    std::vector<std::weak_ptr<Directory>> open_; ///< but the first, in the order of opening
};

// Walks `root`, if there is one, and then what other threads hand over, until all is walked or time is up.
void takePart(Walker& walker, Exchange& exchange, UniqueFd root) {
    if (root) {
        walker.walkFrom(std::move(root));
        const std::lock_guard lock(exchange.mutex);
        --exchange.working;
    }
    for (;;) {
        UniqueFd folder;
        {
            std::unique_lock lock(exchange.mutex);
            ++exchange.waiting;
            exchange.updateWants();
            exchange.changed.notify_all();
            exchange.changed.wait_until(lock, exchange.deadline,
                                        [&] { return !exchange.folders.empty() || exchange.finished(); });
            --exchange.waiting;
            if (exchange.folders.empty())
                return;
            folder = std::move(exchange.folders.front());
            exchange.folders.pop_front();
            ++exchange.working;
            exchange.updateWants();
        }
        walker.walkFrom(std::move(folder));
        const std::lock_guard lock(exchange.mutex);
        --exchange.working;
    }
}

// A thread that is stuck in a file system keeps its share of the state alive; nobody waits for it.
void startHelper(const std::shared_ptr<Exchange>& exchange, std::size_t index) {
    try {
        std::thread([exchange, index] {
            Walker walker(exchange, index);
            takePart(walker, *exchange, {});
        }).detach();
    } catch (const std::system_error&) {
        // One thread does it all.
    }
}

TreeTotals totalsOf(const Exchange& exchange, bool finished) {
    TreeTotals totals{.complete = finished};
    std::int64_t newest = noTime;
    for (const Tally& tally : exchange.tallies) {
        if (__builtin_add_overflow(totals.allocatedBytes, tally.bytes.load(), &totals.allocatedBytes)) {
            totals.allocatedBytes = std::numeric_limits<std::int64_t>::max();
            totals.complete = false;
        }
        totals.regularFiles += tally.files.load();
        newest = std::max(newest, tally.newest.load());
        totals.complete = totals.complete && !tally.cutShort.load();
    }
    if (newest != noTime)
        totals.newestModification = SystemTime(std::chrono::nanoseconds(newest));
    return totals;
}

TreeTotals walkFolder(UniqueFd root, Deadline deadline, unsigned threads) {
    const auto exchange = std::make_shared<Exchange>(deadline, std::max(threads, 1U));
    Walker walker(exchange, 0);
    if (threads > 1)
        walker.whenLarge = [&] {
            for (std::size_t index = 1; index < threads; ++index)
                startHelper(exchange, index);
        };
    exchange->working = 1;
    takePart(walker, *exchange, std::move(root));

    std::unique_lock lock(exchange->mutex);
    const bool finished =
        exchange->changed.wait_until(lock, deadline + patienceWithOtherThreads, [&] { return exchange->finished(); });
    return totalsOf(*exchange, finished);
}

} // namespace

TreeTotals walkTree(const std::filesystem::path& path, Deadline deadline, unsigned threads) {
    struct statx facts;
    if (statx(AT_FDCWD, path.c_str(), statxFlags, statxMask, &facts) != 0)
        return {};
    if (S_ISREG(facts.stx_mode)) {
        Exchange exchange(deadline, 1);
        exchange.tallies[0].add(facts);
        return totalsOf(exchange, true);
    }
    if (hasPassed(deadline) || !S_ISDIR(facts.stx_mode))
        return {};
    UniqueFd root(open(path.c_str(), openFlags));
    return root ? walkFolder(std::move(root), deadline, threads) : TreeTotals{};
}

Result<std::vector<std::string>> visibleNames(const std::filesystem::path& folder) {
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
            if (entry.name[0] != '.')
                names.emplace_back(entry.name);
    }
}

} // namespace vantry
