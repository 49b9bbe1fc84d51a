#include "platform/linux/Trash.h"

#include "base/Uuid.h"
#include "platform/linux/BaseFolder.h"
#include "platform/linux/TrashFolders.h"
#include "platform/linux/TrashInfoFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
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

constexpr std::size_t longestName = 255; // bytes, on most file systems
constexpr auto cannotWrite = "the Trash could not be written to";
constexpr auto cannotMove = "it could not be moved";
constexpr auto otherFileSystem = "it is on another file system than the Trash";
constexpr auto movedTrash = "the Trash was moved meanwhile";
constexpr auto cannotConfirm = "the disk could not confirm the move";

bool isFree(int folder, const std::string& name) {
    struct stat facts = {};
    return fstatat(folder, name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0 && errno == ENOENT;
}

// Not retried once the destination exists: an interrupted file system may have moved the file all the same.
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

std::tm localTimeNow() {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    return local;
}

/// Yields names for the Trash, another one each time the last was taken.
class TrashNames {
public:
    TrashNames(std::string_view name, std::size_t limit) : name_(name), limit_(limit) {}

    /// Absent when it is time to give up.
    std::optional<std::string> next() {
        constexpr int counted = 50; // 2, 3, 4 and so on; then random tags
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

/// Moves one file to one Trash. At each moment the file is in its place, or in the Trash with a complete info file that
/// is on the disk.
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
            const auto info = announced(*name);
            if (!info && info.error() == EEXIST)
                continue;
            if (!info)
                return TrashMove::notMoved(trashError(cannotWrite, info.error()));
            // Writing the info file takes a while, so the file is checked again before it is moved.
            auto refused = refusalByPlace(file_.place());
            if (!refused)
                refused = objection(*info);
            if (refused) {
                info->remove();
                return TrashMove::notMoved(std::move(*refused));
            }
            const int error = moveWithoutReplacing(source_.get(), file_.name(), trash_.files(), *name);
            // A file system may complete the rename and still return an error.
            if (error == 0 || isInTrash(*info))
                return confirmed(*info);
            if (error != EEXIST) {
                withdraw(*info);
                return TrashMove::notMoved(failure(error));
            }
            info->remove();
        }
        return TrashMove::notMoved("too many files in the Trash have its name");
    }

private:
    [[nodiscard]] std::size_t nameLimit() const {
        const long limit = fpathconf(trash_.info(), _PC_NAME_MAX);
        const std::size_t known = limit > 0 ? std::min(static_cast<std::size_t>(limit), longestName) : longestName;
        return known - std::min(known, trashInfoSuffix.size());
    }

    [[nodiscard]] std::string infoText() const {
        return trashInfoText((file_.folder().path() / file_.name()).lexically_normal(), localTimeNow());
    }

    /// An error is an errno; `EEXIST` when the name is taken.
    [[nodiscard]] std::expected<TrashInfoFile, int> announced(const std::string& name) const {
        struct stat taken = {};
        if (fstatat(trash_.files(), name.c_str(), &taken, AT_SYMLINK_NOFOLLOW) == 0)
            return std::unexpected(EEXIST);
        if (errno != ENOENT)
            return std::unexpected(errno);
        return TrashInfoFile::write(trash_.info(), name, infoText());
    }

    /// Deletes the info file unless an item in the Trash may need it.
    void withdraw(const TrashInfoFile& info) const {
        if (isFree(trash_.files(), info.itemName()))
            info.remove();
    }

    [[nodiscard]] bool isInTrash(const TrashInfoFile& info) const {
        return file_.placeIn(trash_.files(), info.itemName()) == PinnedPlace::unchanged;
    }

    [[nodiscard]] bool isModified() const {
        const auto current = file_.facts();
        return !current || current->contentBytes != checked_.contentBytes ||
               current->allocatedBytes != checked_.allocatedBytes ||
               current->fingerprint.contentModificationDate != checked_.fingerprint.contentModificationDate;
    }

    /// Why the file may not go to the Trash or stay there, wherever it is now.
    [[nodiscard]] std::optional<std::string> objection(const TrashInfoFile& info) const {
        // Its recorded origin would restore it to another folder.
        if (!file_.folder().isInPlace())
            return refusalByPlace(PinnedPlace::folderMoved);
        if (!trash_.areInPlace())
            return movedTrash;
        if (!info.isInPlace())
            return "another program changed the Trash meanwhile";
        if (isModified())
            return "it was modified after the scan";
        return std::nullopt;
    }

    /// Why the item of the info file may not stay in the Trash.
    [[nodiscard]] std::optional<std::string> objectionToArrived(const TrashInfoFile& info) const {
        switch (file_.placeIn(trash_.files(), info.itemName())) {
        case PinnedPlace::unchanged: return objection(info);
        case PinnedPlace::missing:
            return isFree(trash_.files(), info.itemName()) ? "another program took it out of the Trash"
                                                           : "what arrived in the Trash could not be looked at";
        case PinnedPlace::folderMoved:
        case PinnedPlace::link:
        case PinnedPlace::otherItem: break;
        }
        return "something else was in its place";
    }

    [[nodiscard]] std::string failure(int error) const {
        if (error == EXDEV)
            return otherFileSystem;
        if (error == ENOENT)
            return trash_.areInPlace() ? "it is not to be found in its place" : movedTrash;
        return trashError(cannotMove, error);
    }

    /// Something has arrived in the Trash under the name in the info file.
    [[nodiscard]] TrashMove confirmed(const TrashInfoFile& info) const {
        if (auto reason = objectionToArrived(info))
            return putBack(info, std::move(*reason));
        // The source folder is synced first: Btrfs syncs one folder at a time, and a power cut in between would leave
        // the file in both.
        int error = syncToDisk(source_.get());
        if (error == 0)
            error = syncToDisk(trash_.files());
        // After a failed sync nobody knows whether a power cut would leave the file in the Trash, so it is put back.
        // Either way it is on the disk once.
        if (error != 0)
            return putBack(info, trashError(cannotConfirm, error));
        // Syncing takes a while, and another program may have acted meanwhile.
        if (auto reason = objectionToArrived(info))
            return putBack(info, std::move(*reason));
        return {.outcome = TrashMove::Outcome::moved};
    }

    [[nodiscard]] TrashMove putBack(const TrashInfoFile& info, std::string reason) const {
        if (moveWithoutReplacing(trash_.files(), info.itemName(), source_.get(), file_.name()) != 0)
            return stranded(info, std::move(reason));
        // The info file is deleted last, when it is certain that no item needs it.
        if (syncToDisk(trash_.files()) == 0 && syncToDisk(source_.get()) == 0)
            withdraw(info);
        return TrashMove::notMoved(std::move(reason));
    }

    /// The outcome for an item that could not be put back.
    [[nodiscard]] TrashMove stranded(const TrashInfoFile& info, std::string reason) const {
        if (isInTrash(info) && trash_.areInPlace() &&
            (info.isInPlace() || TrashInfoFile::write(trash_.info(), info.itemName(), infoText())) && isInTrash(info))
            return {.outcome = TrashMove::Outcome::moved};
        // It has no recorded origin, its Trash was moved away, or it is not the confirmed file.
        if (!isFree(trash_.files(), info.itemName()))
            return {TrashMove::Outcome::misplaced, std::move(reason), trash_.itemPath(info.itemName())};
        if (file_.placeIn(source_.get(), file_.name()) == PinnedPlace::unchanged)
            return TrashMove::notMoved(std::move(reason));
        auto path = whereabouts();
        if (path.empty())
            reason = "another program removed it from the Trash";
        return {TrashMove::Outcome::misplaced, std::move(reason), std::move(path)};
    }

    /// Where another program has put the file; empty when it has no known name.
    [[nodiscard]] std::filesystem::path whereabouts() const {
        auto path = pathOfDescriptor(file_.descriptor());
        return path && file_.placeIn(AT_FDCWD, path->native()) == PinnedPlace::unchanged ? std::move(*path)
                                                                                         : std::filesystem::path();
    }

    const PinnedFile& file_;
    const PinnedFileFacts& checked_;
    UniqueFd source_;
    TrashFolders trash_;
};

} // namespace

Result<std::filesystem::path> homeTrash() {
    if (const auto data = baseFolder("XDG_DATA_HOME", ".local/share"))
        return *data / "Trash";
    return std::unexpected(Error{ErrorKind::notFound, "there is no home folder that could hold a Trash"});
}

TrashMove moveToTrash(const PinnedFile& file, const PinnedFileFacts& checked, const std::filesystem::path& trash) {
    struct stat facts = {};
    if (fstat(file.descriptor(), &facts) != 0)
        return TrashMove::notMoved(trashError(cannotMove, errno));
    if (!S_ISREG(facts.st_mode))
        return TrashMove::notMoved("it is not a file");
    if (auto refused = refusalByPlace(file.place()))
        return TrashMove::notMoved(std::move(*refused));

    // Not with O_PATH: fsync needs a real descriptor of the folder.
    UniqueFd source;
    if (const int error = errorOf([&] {
            source.reset(openat(file.folder().descriptor(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            return source.get();
        }))
        return TrashMove::notMoved(trashError("its folder could not be opened", error));
    auto folders = TrashFolders::open(trash);
    if (!folders)
        return TrashMove::notMoved(folders.error());

    struct stat from = {};
    struct stat to = {};
    if (fstat(source.get(), &from) != 0 || fstat(folders->files(), &to) != 0)
        return TrashMove::notMoved(trashError(cannotMove, errno));
    if (from.st_dev != to.st_dev)
        return TrashMove::notMoved(otherFileSystem);
    return Move(file, checked, std::move(source), std::move(*folders)).run();
}

TrashMove moveToTrash(const PinnedFile& file, const PinnedFileFacts& checked) {
    const auto trash = homeTrash();
    if (!trash)
        return TrashMove::notMoved(trash.error().message);
    return moveToTrash(file, checked, *trash);
}

} // namespace vantry
