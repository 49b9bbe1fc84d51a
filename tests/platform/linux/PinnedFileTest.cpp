#include "platform/PinnedFile.h"

#include "platform/FoundItem.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vantry {

namespace {

namespace fs = std::filesystem;

using Folder = std::shared_ptr<const PinnedFolder>;

struct stat statOf(const fs::path& path) {
    struct stat facts = {};
    EXPECT_EQ(lstat(path.c_str(), &facts), 0) << path;
    return facts;
}

struct stat statOf(int fd) {
    struct stat facts = {};
    EXPECT_EQ(fstat(fd, &facts), 0);
    return facts;
}

void makeUnixSocket(const fs::path& path) {
    const UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.native().size(), sizeof address.sun_path);
    std::strcpy(address.sun_path, path.c_str());
    ASSERT_EQ(bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

/// "folder/deeper" with "file" in it.
class Pinned : public testing::Test {
protected:
    Pinned() : root(fs::canonical(temporary.path())) {
        fs::create_directories(root / "folder/deeper");
        writeFile(file, "text");
        writeFile(folder / "other", "text");
    }

    [[nodiscard]] Folder pinnedFolder() const { return PinnedFolder::open(folder).value(); }
    [[nodiscard]] PinnedFile pinnedFile() const { return PinnedFile::open(pinnedFolder(), "file").value(); }

    /// Empty when the folder is pinned.
    [[nodiscard]] static std::optional<PinFailure> failure(const fs::path& path) {
        const auto pinned = PinnedFolder::open(path);
        return pinned ? std::nullopt : std::optional(pinned.error());
    }
    [[nodiscard]] std::optional<PinFailure> fileFailure(const std::string& name) const {
        const auto pinned = PinnedFile::open(pinnedFolder(), name);
        return pinned ? std::nullopt : std::optional(pinned.error());
    }

    TemporaryFolder temporary;
    fs::path root;
    fs::path folder = root / "folder/deeper";
    fs::path file = folder / "file";
};

using PinnedFolderTest = Pinned;
using PinnedFileTest = Pinned;

/// Whether folders are pinned and refused as they should be, in words.
std::string folderAnswers(const fs::path& root) {
    fs::create_directories(root / "real/folder");
    fs::create_directory_symlink(root / "real", root / "link");
    fs::create_directory_symlink("folder", root / "real/link");
    fs::create_directory_symlink("nowhere", root / "broken");
    writeFile(root / "file", "");
    const std::vector<std::pair<const char*, std::optional<PinFailure>>> cases{
        {"", std::nullopt},
        {"real", std::nullopt},
        {"real/folder", std::nullopt},
        {"real//folder/", std::nullopt},
        {"link", PinFailure::link},
        {"link/", PinFailure::link},
        {"link/folder", PinFailure::link},
        {"real/link", PinFailure::link},
        {"broken", PinFailure::link},
        {"broken/folder", PinFailure::link},
        {"missing", PinFailure::missing},
        {"missing/deeper", PinFailure::missing},
        {"file", PinFailure::missing},
        {"file/deeper", PinFailure::missing},
    };
    for (const auto& [name, expected] : cases) {
        const auto pinned = PinnedFolder::open(root / name);
        const auto actual = pinned ? std::nullopt : std::optional(pinned.error());
        if (actual != expected)
            return std::string("wrong about \"") + name + '"';
        if (pinned && (statOf((*pinned)->descriptor()).st_ino != statOf(fs::canonical(root / name)).st_ino ||
                       !(*pinned)->isInPlace()))
            return std::string("another folder than \"") + name + '"';
    }
    return PinnedFolder::open("/") ? "right" : "wrong about /";
}

} // namespace

TEST_F(PinnedFolderTest, FollowsNoLinkOnTheWayOrAtTheEnd) {
    fs::create_directory(root / "answers");
    EXPECT_EQ(folderAnswers(root / "answers"), "right");
}

// Older kernels, and sandboxes that know only what is older; and a file system in which something is always renamed.
TEST_F(PinnedFolderTest, DoesTheSameWhereTheSystemOffersNoSuchCall) {
    for (const int errorNumber : {ENOSYS, EPERM, EINVAL, EAGAIN}) {
        const fs::path home = root / std::to_string(errorNumber);
        fs::create_directory(home);
        const std::string answer = inChildProcess([&]() -> std::string {
            if (!refuseCall(SYS_openat2, errorNumber))
                return "not refused";
            return syscall(SYS_openat2, AT_FDCWD, "/", nullptr, 0) == -1 && errno == errorNumber ? folderAnswers(home)
                                                                                                 : "not refused";
        });
        if (answer == "not refused")
            GTEST_SKIP() << "may not filter system calls";
        EXPECT_EQ(answer, "right") << std::strerror(errorNumber);
    }
}

TEST_F(PinnedFolderTest, TakesNoPathThatIsNotWhole) {
    EXPECT_EQ(failure("relative"), PinFailure::unavailable);
    EXPECT_EQ(failure(""), PinFailure::unavailable);
    EXPECT_EQ(failure(folder.native() + std::string("\0more", 5)), PinFailure::unavailable);
}

TEST_F(PinnedFolderTest, AFolderThatWasMovedIsNotInPlace) {
    const Folder pinned = pinnedFolder();
    EXPECT_TRUE(pinned->isInPlace());
    fs::rename(folder, root / "moved");
    EXPECT_FALSE(pinned->isInPlace());
    fs::create_directory(folder);
    EXPECT_FALSE(pinned->isInPlace()) << "another folder";
    fs::remove(folder);
    fs::create_directory_symlink(root / "moved", folder);
    EXPECT_FALSE(pinned->isInPlace()) << "a link to it";
    fs::remove(folder);
    fs::rename(root / "moved", folder);
    EXPECT_TRUE(pinned->isInPlace());
    fs::rename(root / "folder", root / "renamed");
    EXPECT_FALSE(pinned->isInPlace()) << "its parent was moved";
    fs::create_directory_symlink(root / "renamed", root / "folder");
    EXPECT_FALSE(pinned->isInPlace()) << "a link on the way to it";
}

TEST_F(PinnedFolderTest, TellsWhatTheFolderIs) {
    const auto facts = pinnedFolder()->facts();
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->isDirectory, true);
    EXPECT_EQ(facts->isSymbolicLink, false);
    EXPECT_TRUE(facts->volumeIdentifier);
    EXPECT_EQ(facts->volumeIdentifier, readFileFingerprint(folder).volumeIdentifier);
    EXPECT_EQ(facts->volumeIdentifier, readFileFingerprint(file).volumeIdentifier);
}

TEST_F(PinnedFileTest, RefusesWhatIsNeitherFileNorFolder) {
    fs::create_symlink("file", folder / "link");
    fs::create_symlink("nowhere", folder / "broken");
    fs::create_directory(folder / "directory");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    makeUnixSocket(folder / "socket");
    EXPECT_EQ(fileFailure("file"), std::nullopt);
    EXPECT_EQ(fileFailure("directory"), std::nullopt);
    EXPECT_EQ(fileFailure("link"), PinFailure::link);
    EXPECT_EQ(fileFailure("broken"), PinFailure::link);
    EXPECT_EQ(fileFailure("pipe"), PinFailure::special);
    EXPECT_EQ(fileFailure("socket"), PinFailure::special);
    EXPECT_EQ(fileFailure("missing"), PinFailure::missing);
    EXPECT_EQ(fileFailure(std::string(256, 'n')), PinFailure::unavailable);
}

TEST_F(PinnedFileTest, TakesOnlyANameDirectlyInTheFolder) {
    for (const std::string name : {"", ".", "..", "/", "directory/file", "../deeper/file", "file/", "/etc/passwd"})
        EXPECT_EQ(fileFailure(name), PinFailure::unavailable) << name;
    EXPECT_EQ(fileFailure(std::string("file\0more", 9)), PinFailure::unavailable);
}

TEST_F(PinnedFileTest, TakesNamesThatAreNoText) {
    for (const std::string name : {"\xff\xfe", "new\nline", "\x01", "-rf", "~"}) {
        writeFile(folder / name, "");
        const auto pinned = PinnedFile::open(pinnedFolder(), name);
        ASSERT_TRUE(pinned) << name;
        EXPECT_EQ(pinned->place(), PinnedPlace::unchanged) << name;
    }
}

TEST_F(PinnedFileTest, TellsWhatTheFileIs) {
    const PinnedFile pinned = pinnedFile();
    const auto facts = pinned.facts();
    ASSERT_TRUE(facts);
    const struct stat expected = statOf(file);
    EXPECT_EQ(facts->isRegularFile, true);
    EXPECT_EQ(facts->isSymbolicLink, false);
    EXPECT_EQ(facts->isPackage, false);
    EXPECT_EQ(facts->isUbiquitousItem, false);
    EXPECT_EQ(facts->allocatedBytes, expected.st_blocks * 512);
    EXPECT_EQ(facts->totalAllocated, expected.st_blocks * 512);
    EXPECT_GT(expected.st_blocks, 0);
    EXPECT_EQ(facts->owner, getuid());
    EXPECT_EQ(facts->fingerprint, readFileFingerprint(file));
    EXPECT_TRUE(facts->fingerprint.resourceIdentifier);
    EXPECT_EQ(pinned.name(), "file");
    EXPECT_EQ(pinned.folder().path(), folder);
}

TEST_F(PinnedFileTest, AFolderIsNoRegularFile) {
    fs::create_directory(folder / "directory");
    const auto facts = PinnedFile::open(pinnedFolder(), "directory").value().facts();
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->isRegularFile, false);
    EXPECT_EQ(facts->isSymbolicLink, false);
}

TEST_F(PinnedFileTest, AnswersForTheItemWhateverItsNameLeadsTo) {
    const PinnedFile pinned = pinnedFile();
    const auto before = pinned.facts();
    fs::rename(file, folder / "renamed");
    EXPECT_EQ(pinned.facts(), before);
    writeFile(file, "another text");
    EXPECT_EQ(pinned.facts(), before);
    fs::rename(folder, root / "moved");
    EXPECT_EQ(pinned.facts(), before);
    fs::remove(root / "moved/renamed");
    EXPECT_EQ(pinned.facts(), before);
}

TEST_F(PinnedFileTest, TellsWhatWasDoneToTheItemSince) {
    const PinnedFile pinned = pinnedFile();
    const auto before = pinned.facts();
    writeFile(file, std::string(100'000, 'x'));
    const auto after = pinned.facts();
    ASSERT_TRUE(before && after);
    EXPECT_GT(after->totalAllocated, before->totalAllocated);
    EXPECT_EQ(after->fingerprint.resourceIdentifier, before->fingerprint.resourceIdentifier);
}

TEST_F(PinnedFileTest, TellsWhereItsNameLeads) {
    const PinnedFile pinned = pinnedFile();
    EXPECT_EQ(pinned.place(), PinnedPlace::unchanged);
    fs::rename(file, folder / "renamed");
    EXPECT_EQ(pinned.place(), PinnedPlace::missing);
    writeFile(file, "text");
    EXPECT_EQ(pinned.place(), PinnedPlace::otherItem);
    fs::remove(file);
    fs::create_symlink("renamed", file);
    EXPECT_EQ(pinned.place(), PinnedPlace::link);
    fs::remove(file);
    fs::create_hard_link(folder / "renamed", file);
    EXPECT_EQ(pinned.place(), PinnedPlace::unchanged) << "a second name of it";
    fs::rename(folder, root / "moved");
    EXPECT_EQ(pinned.place(), PinnedPlace::folderMoved);
    fs::create_directory_symlink(root / "moved", folder);
    EXPECT_EQ(pinned.place(), PinnedPlace::folderMoved);
}

// What is renamed by name may have been exchanged just before: what arrived is compared with what was pinned.
TEST_F(PinnedFileTest, IsToldAgainInTheFolderThatItWasMovedTo) {
    const PinnedFile pinned = pinnedFile();
    fs::create_directory(root / "arrived");
    const UniqueFd there(open((root / "arrived").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    ASSERT_EQ(renameat(pinned.folder().descriptor(), "file", there.get(), "file 2"), 0);
    ASSERT_EQ(renameat(pinned.folder().descriptor(), "other", there.get(), "other"), 0);
    EXPECT_EQ(pinned.placeIn(there.get(), "file 2"), PinnedPlace::unchanged);
    EXPECT_EQ(pinned.placeIn(there.get(), "other"), PinnedPlace::otherItem);
    EXPECT_EQ(pinned.placeIn(there.get(), "file"), PinnedPlace::missing);
    EXPECT_EQ(pinned.placeIn(there.get(), ""), PinnedPlace::missing);
    EXPECT_EQ(pinned.place(), PinnedPlace::missing);
}

// The number of a file that is held is not given to a new one.
TEST_F(PinnedFileTest, IsNotTakenForAFileThatReplacedIt) {
    const PinnedFile pinned = pinnedFile();
    fs::remove(file);
    for (int i = 0; i < 1000; ++i) {
        writeFile(file, "text");
        ASSERT_EQ(pinned.place(), PinnedPlace::otherItem);
        fs::remove(file);
    }
}

// The same file, and yet another place: what is done by name there would be done to what is mounted.
TEST_F(PinnedFileTest, WhatIsMountedOverItIsAnotherPlace) {
    const std::string answer = inChildProcess([&]() -> std::string {
        const auto mountOnItself = [](const fs::path& path) {
            return mount(path.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) == 0;
        };
        // Mounted for this process alone, and gone with it.
        if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            return "not mounted";
        const PinnedFile pinned = pinnedFile();
        if (!mountOnItself(file))
            return "not mounted";
        if (pinned.place() != PinnedPlace::otherItem)
            return "wrong about the file";
        if (umount(file.c_str()) != 0 || !mountOnItself(folder))
            return "not mounted";
        return pinned.place() == PinnedPlace::folderMoved ? "right" : "wrong about the folder";
    });
    if (answer == "not mounted")
        GTEST_SKIP() << "may not mount";
    EXPECT_EQ(answer, "right");
}

TEST_F(PinnedFileTest, NeedsNoPermissionOnTheItem) {
    fs::permissions(temporary.path(), fs::perms(0755));
    fs::permissions(file, fs::perms::none);
    fs::permissions(folder, fs::perms(0311)); // may be passed, not be read
    const std::string answer = inChildProcess([&]() -> std::string {
        if (!becomeUser(unknownUser()))
            return "still the same user";
        const auto pinned = PinnedFile::open(pinnedFolder(), "file");
        return pinned && pinned->facts() && pinned->place() == PinnedPlace::unchanged ? "right" : "wrong";
    });
    fs::permissions(folder, fs::perms::owner_all);
    if (answer == "still the same user")
        GTEST_SKIP() << "may not become another user";
    EXPECT_EQ(answer, "right");
}

TEST_F(PinnedFileTest, WithoutRightsOrDescriptorsNothingIsPinned) {
    fs::permissions(temporary.path(), fs::perms(0755));
    fs::permissions(folder, fs::perms(0700));
    const std::string rights = inChildProcess([&]() -> std::string {
        if (geteuid() != 0 || !becomeUser(unknownUser()))
            return "still the same user";
        return failure(folder / "below") == PinFailure::unavailable ? "right" : "wrong";
    });
    EXPECT_TRUE(rights == "right" || rights == "still the same user") << rights;
    const std::string descriptors = inChildProcess([&]() -> std::string {
        const Folder pinned = pinnedFolder();
        const rlimit none{0, 0};
        if (setrlimit(RLIMIT_NOFILE, &none) != 0)
            return "no limit";
        const auto item = PinnedFile::open(pinned, "file");
        return failure(folder) == PinFailure::unavailable && !item && item.error() == PinFailure::unavailable ? "right"
                                                                                                              : "wrong";
    });
    EXPECT_EQ(descriptors, "right");
}

TEST_F(PinnedFileTest, SeveralShareOneFolderAndLeaveNoDescriptorOpen) {
    const auto before = openDescriptorCount();
    {
        const Folder shared = pinnedFolder();
        const auto one = PinnedFile::open(shared, "file");
        const auto other = PinnedFile::open(shared, "other");
        ASSERT_TRUE(one && other);
        EXPECT_EQ(&one->folder(), &other->folder());
        EXPECT_EQ(openDescriptorCount(), before + 3);
        EXPECT_EQ(one->place(), PinnedPlace::unchanged);
        EXPECT_TRUE(one->facts());
        EXPECT_EQ(fileFailure("missing"), PinFailure::missing);
        EXPECT_EQ(openDescriptorCount(), before + 3);
    }
    EXPECT_EQ(openDescriptorCount(), before);
}

} // namespace vantry
