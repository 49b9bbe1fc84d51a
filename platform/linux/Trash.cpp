#include "platform/linux/Trash.h"

#include "base/Uuid.h"
#include "platform/UserSession.h"
#include "platform/linux/TrashEntry.h"
#include "platform/linux/TrashFolders.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <expected>
#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

constexpr std::size_t longestName = 255; // bytes, of most file systems
constexpr auto cannotWrite = "the Trash could not be written to";
constexpr auto cannotMove = "it could not be moved";
constexpr auto cannotConfirm = "the disk could not confirm the move";

TrashMove notMoved(std::string reason) {
    return {.outcome = TrashMove::Outcome::notMoved, .reason = std::move(reason)};
}
TrashMove notMoved(const Error& error) { return notMoved(error.message); }

std::optional<std::string> refusalByPlace(PinnedPlace place) {
    switch (place) {
    case PinnedPlace::unchanged: return std::nullopt;
    case PinnedPlace::folderMoved: return "its folder is not to be found in its place";
    case PinnedPlace::missing: return "it is not to be found in its place";
    case PinnedPlace::link:
    case PinnedPlace::otherItem: break;
    }
    return "something else is in its place";
}

bool isFree(int folder, const std::string& name) {
    struct stat facts = {};
    return fstatat(folder, name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0 && errno == ENOENT;
}

// Not tried again once something is there: a file system that is interrupted may have moved it nevertheless.
int moveWithoutReplacing(int fromFolder, const std::string& from, int toFolder, const std::string& to) {
    constexpr int attempts = 16;
    for (int left = attempts; left > 0; --left) {
        if (renameat2(fromFolder, from.c_str(), toFolder, to.c_str(), RENAME_NOREPLACE) == 0)
            return 0;
        const int error = errno;
        if ((error != EINTR && error != EAGAIN) || !isFree(toFolder, to))
            return error;
    }
    return EAGAIN;
}

int writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        ssize_t written = 0;
        if (const int error = errorOf([&] { return written = write(fd, text.data(), text.size()); }))
            return error;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

std::tm localTimeNow() {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    return local;
}

/// Names for the Trash, the next one after each that was taken.
class TrashNames {
public:
    TrashNames(std::string_view name, std::size_t limit) : name_(name), limit_(limit) {}

    /// Absent when it is time to give up.
    std::optional<std::string> next() {
        constexpr int counted = 50; // one after the other; beyond that, by chance
        constexpr int atMost = 100;
        constexpr std::size_t randomDigits = 8;
        if (++number_ > atMost)
            return std::nullopt;
        if (number_ == 1)
            return trashName(name_, "", limit_);
        return trashName(name_, number_ <= counted ? std::to_string(number_) : randomUuid().substr(0, randomDigits),
                         limit_);
    }

private:
    std::string_view name_;
    std::size_t limit_;
    int number_ = 0;
};

/// An info file of our own, and the name of the item that it tells of.
struct Announcement {
    std::string name;
    std::string infoName;
    UniqueFd info;
};

/// The move of one file to one Trash. At each moment the file is in its place, or in the Trash with an info file that
/// is complete and on the disk.
class Move {
public:
    Move(const PinnedFile& file, const PinnedFileFacts& checked, UniqueFd source, TrashFolders trash)
        : file_(file),
          checked_(checked),
          source_(std::move(source)),
          trash_(std::move(trash)) {}

    [[nodiscard]] TrashMove run() const {
        TrashNames names(file_.name(), nameLimit());
        while (const auto name = names.next()) {
            auto announcement = announced(*name);
            if (!announcement && announcement.error() == EEXIST)
                continue;
            if (!announcement)
                return notMoved(trashError(cannotWrite, announcement.error()));
            // Again, for to write takes a while, and what is not moved need not be put back.
            auto refused = refusalByPlace(file_.place());
            if (!refused && isModified())
                refused = "it was modified after the scan";
            if (refused) {
                withdraw(*announcement);
                return notMoved(*refused);
            }
            const int error = moveWithoutReplacing(source_.get(), file_.name(), trash_.files(), *name);
            // A file system may do a thing and then fail to say so.
            if (error == 0 || file_.placeIn(trash_.files(), *name) == PinnedPlace::unchanged)
                return confirmed(*announcement);
            withdraw(*announcement, error == EEXIST ? Withdrawal::evenIfTaken : Withdrawal::onlyIfUnused);
            if (error != EEXIST)
                return notMoved(failure(error));
        }
        return notMoved("too many files in the Trash have its name");
    }

private:
    enum class Withdrawal { onlyIfUnused, evenIfTaken };

    [[nodiscard]] std::size_t nameLimit() const {
        const long limit = fpathconf(trash_.info(), _PC_NAME_MAX);
        const std::size_t known = limit > 0 ? std::min(static_cast<std::size_t>(limit), longestName) : longestName;
        return known - std::min(known, trashInfoSuffix.size());
    }

    /// An error is an errno; `EEXIST` when the name is taken.
    [[nodiscard]] std::expected<Announcement, int> announced(const std::string& name) const {
        struct stat taken = {};
        if (fstatat(trash_.files(), name.c_str(), &taken, AT_SYMLINK_NOFOLLOW) == 0)
            return std::unexpected(EEXIST);
        if (errno != ENOENT)
            return std::unexpected(errno);
        Announcement announcement{name, name + std::string(trashInfoSuffix), {}};
        int error = errorOf([&] {
            announcement.info.reset(openat(trash_.info(), announcement.infoName.c_str(),
                                           O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
            return announcement.info.get();
        });
        if (error != 0)
            return std::unexpected(error);
        const auto origin = (file_.folder().path() / file_.name()).lexically_normal();
        error = writeAll(announcement.info.get(), trashInfoText(origin, localTimeNow()));
        if (error == 0)
            error = syncToDisk(announcement.info.get());
        if (error == 0)
            error = syncToDisk(trash_.info());
        if (error == 0)
            return announcement;
        withdraw(announcement);
        return std::unexpected(error);
    }

    // Nothing else is ever deleted, and this only when no item depends on it.
    void withdraw(const Announcement& announcement, Withdrawal withdrawal = Withdrawal::onlyIfUnused) const {
        struct stat found = {};
        struct stat ours = {};
        if (withdrawal == Withdrawal::onlyIfUnused && !isFree(trash_.files(), announcement.name))
            return;
        if (fstatat(trash_.info(), announcement.infoName.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0 &&
            fstat(announcement.info.get(), &ours) == 0 && found.st_dev == ours.st_dev && found.st_ino == ours.st_ino)
            unlinkat(trash_.info(), announcement.infoName.c_str(), 0);
    }

    [[nodiscard]] static Error failure(int error) {
        if (error == EXDEV)
            return Error{ErrorKind::unsupported, "it is on another file system than the Trash"};
        if (error == ENOENT)
            return Error{ErrorKind::notFound, "it is not to be found in its place"};
        return trashError(cannotMove, error);
    }

    [[nodiscard]] bool isModified() const {
        const auto current = file_.facts();
        return !current || current->contentBytes != checked_.contentBytes ||
               current->fingerprint.contentModificationDate != checked_.fingerprint.contentModificationDate;
    }

    /// Something is in the Trash under the announced name.
    [[nodiscard]] TrashMove confirmed(const Announcement& announcement) const {
        switch (file_.placeIn(trash_.files(), announcement.name)) {
        case PinnedPlace::unchanged: break;
        case PinnedPlace::missing: return putBack(announcement, "what arrived in the Trash could not be looked at");
        case PinnedPlace::folderMoved:
        case PinnedPlace::link:
        case PinnedPlace::otherItem: return putBack(announcement, "something else was in its place");
        }
        // Where it would be put back to by its origin is another folder then.
        if (!file_.folder().isInPlace())
            return putBack(announcement, *refusalByPlace(PinnedPlace::folderMoved));
        if (!trash_.areInPlace())
            return putBack(announcement, "the Trash was moved meanwhile");
        // It is in the Trash, and whether it will be there after a power cut as well nobody knows. Put back, so that
        // what failed is in its place as after each other failure; either way the disk holds it once.
        int error = syncToDisk(trash_.files());
        if (error == 0)
            error = syncToDisk(source_.get());
        if (error != 0)
            return putBack(announcement, trashError(cannotConfirm, error).message);
        return {.outcome = TrashMove::Outcome::moved};
    }

    [[nodiscard]] TrashMove putBack(const Announcement& announcement, std::string reason) const {
        const int error = moveWithoutReplacing(trash_.files(), announcement.name, source_.get(), file_.name());
        if (error != 0) {
            if (file_.placeIn(trash_.files(), announcement.name) == PinnedPlace::unchanged)
                return {.outcome = TrashMove::Outcome::moved};
            if (!isFree(trash_.files(), announcement.name))
                return {TrashMove::Outcome::misplaced, std::move(reason), trash_.itemPath(announcement.name)};
            return notMoved(std::move(reason));
        }
        // The info file goes last, and not before it is certain that it is not needed.
        if (syncToDisk(source_.get()) == 0 && syncToDisk(trash_.files()) == 0)
            withdraw(announcement);
        return notMoved(std::move(reason));
    }

    const PinnedFile& file_;
    const PinnedFileFacts& checked_;
    UniqueFd source_;
    TrashFolders trash_;
};

} // namespace

Result<std::filesystem::path> homeTrash() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/')
        return std::filesystem::path(data) / "Trash";
    if (const auto home = homeFolder(); home && home->is_absolute())
        return *home / ".local/share/Trash";
    return std::unexpected(Error{ErrorKind::notFound, "there is no home folder that could hold a Trash"});
}

TrashMove moveToTrash(const PinnedFile& file, const PinnedFileFacts& checked, const std::filesystem::path& trash) {
    struct stat facts = {};
    if (fstat(file.descriptor(), &facts) != 0)
        return notMoved(trashError(cannotMove, errno));
    if (!S_ISREG(facts.st_mode))
        return notMoved("it is not a file");
    if (auto refused = refusalByPlace(file.place()))
        return notMoved(std::move(*refused));

    // Not for its path alone: the folder has to be brought to the disk as well.
    UniqueFd source;
    if (const int error = errorOf([&] {
            source.reset(openat(file.folder().descriptor(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            return source.get();
        }))
        return notMoved(trashError("its folder could not be opened", error));
    auto folders = TrashFolders::open(trash);
    if (!folders)
        return notMoved(folders.error());

    struct stat from = {};
    struct stat to = {};
    if (fstat(source.get(), &from) != 0 || fstat(folders->files(), &to) != 0)
        return notMoved(trashError(cannotMove, errno));
    if (from.st_dev != to.st_dev)
        return notMoved("it is on another file system than the Trash");
    return Move(file, checked, std::move(source), std::move(*folders)).run();
}

TrashMove moveToTrash(const PinnedFile& file, const PinnedFileFacts& checked) {
    const auto trash = homeTrash();
    if (!trash)
        return notMoved(trash.error());
    return moveToTrash(file, checked, *trash);
}

} // namespace vantry
