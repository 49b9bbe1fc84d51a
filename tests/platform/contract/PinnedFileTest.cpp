#include "platform/PinnedFile.h"

#include "platform/FoundItem.h"
#include "tests/platform/contract/PinnedFileFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

using Folder = std::shared_ptr<const PinnedFolder>;

void makeUnixSocket(const fs::path& path) {
    const UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.native().size(), sizeof address.sun_path);
    std::strcpy(address.sun_path, path.c_str());
    ASSERT_EQ(bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

} // namespace

TEST_F(PinnedFolderTest, FollowsNoLinkOnTheWayOrAtTheEnd) {
    fs::create_directory(root / "answers");
    EXPECT_EQ(folderAnswers(root / "answers"), "right");
}

TEST_F(PinnedFolderTest, RefusesRelativePaths) {
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

TEST_F(PinnedFolderTest, ReturnsTheFactsOfTheFolder) {
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

TEST_F(PinnedFileTest, AcceptsOnlyNamesInTheFolder) {
    for (const std::string name : {"", ".", "..", "/", "directory/file", "../deeper/file", "file/", "/etc/passwd"})
        EXPECT_EQ(fileFailure(name), PinFailure::unavailable) << name;
    EXPECT_EQ(fileFailure(std::string("file\0more", 9)), PinFailure::unavailable);
}

TEST_F(PinnedFileTest, AcceptsNamesThatAreNotUtf8) {
    for (const std::string name : {"\xff\xfe", "new\nline", "\x01", "-rf", "~"}) {
        writeFile(folder / name, "");
        const auto pinned = PinnedFile::open(pinnedFolder(), name);
        ASSERT_TRUE(pinned) << name;
        EXPECT_EQ(pinned->place(), PinnedPlace::unchanged) << name;
    }
}

TEST_F(PinnedFileTest, ReturnsTheFactsOfTheFile) {
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

TEST_F(PinnedFileTest, AFolderIsNotARegularFile) {
    fs::create_directory(folder / "directory");
    const auto facts = PinnedFile::open(pinnedFolder(), "directory").value().facts();
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->isRegularFile, false);
    EXPECT_EQ(facts->isSymbolicLink, false);
}

TEST_F(PinnedFileTest, SeesLaterChangesOfTheItem) {
    const PinnedFile pinned = pinnedFile();
    const auto before = pinned.facts();
    writeFile(file, std::string(100'000, 'x'));
    const auto after = pinned.facts();
    ASSERT_TRUE(before && after);
    EXPECT_GT(after->totalAllocated, before->totalAllocated);
    EXPECT_EQ(after->fingerprint.resourceIdentifier, before->fingerprint.resourceIdentifier);
}

TEST_F(PinnedFileTest, ReportsWhereItsNameLeads) {
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
TEST_F(PinnedFileTest, IsRecognizedInTheFolderThatItWasMovedTo) {
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
TEST_F(PinnedFileTest, IsNotMistakenForAFileThatReplacedIt) {
    const PinnedFile pinned = pinnedFile();
    fs::remove(file);
    for (int i = 0; i < 1000; ++i) {
        writeFile(file, "text");
        ASSERT_EQ(pinned.place(), PinnedPlace::otherItem);
        fs::remove(file);
    }
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
